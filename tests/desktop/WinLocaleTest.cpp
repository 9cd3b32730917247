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
  const auto british = MakeWinLocale(kCodePageUtf8, L"en-GB");
  EXPECT_EQ(british->ShortDate({2001, 2, 3, 4, 5, 6}), u"03/02/2001");
  EXPECT_EQ(british->ShortTime({2001, 2, 3, 4, 5, 6}), u"04:05");
  const auto american = MakeWinLocale(kCodePageUtf8, L"en-US");
  EXPECT_EQ(american->ShortDate({2001, 2, 3, 0, 5, 6}), u"2/3/2001");
  EXPECT_EQ(american->ShortTime({2001, 2, 3, 0, 5, 6}), u"12:05 AM");
}

}  // namespace
}  // namespace vesko
