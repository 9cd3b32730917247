#include <gtest/gtest.h>

#include <cstdlib>

#include "desktop/windows/WindowsDesktop.h"

namespace vesko {
namespace {

// Whoever runs the tests says which code page they made the system's.
TEST(MakeWinLocaleTest, TakesTheSystemsCodePageForNoneAndForAnUnknownOne) {
  const char* code_page = std::getenv("VESKO_CODE_PAGE");
  ASSERT_TRUE(code_page);
  EXPECT_EQ(MakeWinLocale(0)->CodePage(), std::atoi(code_page));
  EXPECT_EQ(MakeWinLocale(99999)->CodePage(), std::atoi(code_page));
}

TEST(MakeWinLocaleTest, WritesTheUsersShortFormats) {
  const struct {
    const wchar_t* locale;
    DateTime date;
    Text short_date;
    Text short_time;
  } kCases[] = {
      {L"en-GB", {2001, 2, 3, 4, 5, 6}, u"03/02/2001", u"04:05"},
      {L"en-US", {2001, 2, 3, 0, 5, 6}, u"2/3/2001", u"12:05 AM"},
  };
  for (const auto& row : kCases) {
    auto locale = MakeWinLocale(kCodePageUtf8, row.locale);
    EXPECT_EQ(locale->ShortDate(row.date), row.short_date);
    EXPECT_EQ(locale->ShortTime(row.date), row.short_time);
  }
}

}  // namespace
}  // namespace vesko
