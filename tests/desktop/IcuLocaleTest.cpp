#include <gtest/gtest.h>

#include <cstdlib>
#include <utility>

#include "desktop/linux/IcuLocale.h"

namespace vesko {
namespace {

TEST(HostCodePageTest, FollowsTheUsersSettings) {
  const std::pair<const char*, int> kCases[] = {{"C", 65001},
                                                {"xx_XX", 65001},
                                                {"xx_XX.", 65001},
                                                {"xx.utf8", 65001},
                                                {"xx.ISO-8859-99", 65001},
                                                {"xx.euckr", 949},
                                                {"xx_XX.EUC-KR", 949},
                                                {"xx_XX.GBK@euro", 936},
                                                {"xx.gb18030", 936},
                                                {"xx.Shift_JIS", 932},
                                                {"xx.EUC-JP", 932},
                                                {"xx.Big5", 950},
                                                {"xx.TIS-620", 874},
                                                {"xx.KOI8-R", 1251},
                                                {"xx.CP1250", 1250},
                                                {"xx.ISO-8859-1", 1252},
                                                {"xx.ISO-8859-15", 1252}};
  for (const auto& [all, code_page] : kCases) {
    setenv("LC_ALL", all, 1);
    EXPECT_EQ(HostCodePage(), code_page) << all;
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
