#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>
#include <utility>
#include <vector>

#include "desktop/linux/LinuxDesktop.h"

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

TEST(DateFormatTest, WritesTheUsersShortFormats) {
  const std::tuple<const char*, DateTime, Text, Text> kCases[] = {
      {"en_GB", {2001, 2, 3, 4, 5, 6}, u"03/02/2001", u"04:05"},
      {"en_US", {2001, 2, 3, 0, 5, 6}, u"2/3/01", u"12:05 AM"},
      {"de_DE", {2001, 2, 3, 23, 59, 0}, u"03.02.01", u"23:59"},
      {"ko_KR", {2001, 2, 3, 14, 5, 0}, u"01. 2. 3.", u"\uC624\uD6C4 2:05"},
      // Other calendars and digits.
      {"th_TH", {2001, 2, 3, 4, 5, 6}, u"3/2/44", u"04:05"},
      {"fa_IR",
       {2001, 3, 21, 4, 5, 6},
       u"\u06F1\u06F3\u06F8\u06F0/\u06F1/\u06F1",
       u"\u06F4:\u06F0\u06F5"},
  };
  for (const auto& [name, date, short_date, short_time] : kCases) {
    EXPECT_EQ(MakeIcuLocale(kCodePageUtf8, name)->ShortDate(date), short_date) << name;
    EXPECT_EQ(MakeIcuLocale(kCodePageUtf8, name)->ShortTime(date), short_time) << name;
  }
}

}  // namespace
}  // namespace vesko
