#include <gtest/gtest.h>

#include <cstdlib>

#include "desktop/linux/IcuLocale.h"

namespace vesko {
namespace {

TEST(CodePageOfCodeSetTest, KnowsTheLegacyOnesAndTakesTheRestForUtf8) {
  const struct {
    const char* code_set;
    int code_page;
  } kCases[] = {
      {"EUC-KR", 949},        {"euckr", 949},        {"Shift_JIS", 932}, {"EUC-JP", 932},
      {"GB2312", 936},        {"gb18030", 936},      {"Big5", 950},      {"TIS-620", 874},
      {"ISO-8859-1", 1252},   {"ISO-8859-15", 1252}, {"KOI8-R", 1251},   {"CP1250", 1250},
      {"UTF-8", 65001},       {"utf8", 65001},       {"", 65001},        {"ANSI_X3.4-1968", 65001},
      {"ISO-8859-99", 65001},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(CodePageOfCodeSet(row.code_set), row.code_page) << row.code_set;
  }
}

TEST(HostCodePageTest, FollowsTheUsersSettings) {
  const struct {
    const char* all;
    int code_page;
  } kCases[] = {{"C.UTF-8", 65001},        {"C", 65001},     {"xx_XX.eucKR", 949},
                {"xx_XX.GBK@euro", 936},   {"xx_XX", 65001}, {"xx_XX.", 65001},
                {"xx_XX.ISO-8859-1", 1252}};
  for (const auto& row : kCases) {
    setenv("LC_ALL", row.all, 1);
    EXPECT_EQ(HostCodePage(), row.code_page) << row.all;
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
