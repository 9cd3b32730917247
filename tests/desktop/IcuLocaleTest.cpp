#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>
#include <vector>

#include "desktop/linux/IcuLocale.h"

namespace vesko {
namespace {

TEST(HostCodePageTest, FollowsTheUsersSettings) {
  const std::pair<int, std::vector<const char*>> kCases[] = {
      {65001, {"C", "xx_XX", "xx_XX.", "xx.utf8", "xx.ISO-8859-99"}},
      {949, {"xx_XX.EUC-KR", "xx.euckr"}},
      {932, {"xx.Shift_JIS", "xx.EUC-JP"}},
      {936, {"xx_XX.GBK@euro", "xx.gb18030"}},
      {950, {"xx.Big5"}},
      {874, {"xx.TIS-620"}},
      {1250, {"xx.CP1250"}},
      {1251, {"xx.KOI8-R"}},
      {1252, {"xx.ISO-8859-1", "xx.ISO-8859-15"}}};
  for (const auto& [code_page, settings] : kCases) {
    for (const char* all : settings) {
      setenv("LC_ALL", all, 1);
      EXPECT_EQ(HostCodePage(), code_page) << all;
    }
  }
  unsetenv("LC_ALL");
}

TEST(MakeIcuLocaleTest, TakesAnUnknownCodePageForUtf8AndAnEmptyNameForTheUsers) {
  EXPECT_EQ(MakeIcuLocale(437, "en_GB")->CodePage(), kCodePageUtf8);
  setenv("LC_ALL", "de_DE.UTF-8", 1);
  EXPECT_EQ(MakeIcuLocale(0, "")->ShortDate({2001, 2, 3, 0, 0, 0}), u"03.02.01");
  unsetenv("LC_ALL");
}

}  // namespace
}  // namespace vesko
