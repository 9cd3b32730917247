#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>

#include "base/Text.h"
#include "support/ErrorOf.h"

namespace vesko {
namespace {

// Few different characters, some of which share a half with another.
Text RandomText(std::mt19937& random, size_t size) {
  constexpr TextView kAlphabet = u"aab\r\u0D0D\u0D61\u6100";
  Text text(size, u'\0');
  for (char16_t& c : text) c = kAlphabet[random() % kAlphabet.size()];
  return text;
}

TEST(TextSearch, AgreesWithThePlainSearchAcrossBlocks) {
  std::mt19937 random(1);
  for (int round = 0; round < 3000; ++round) {
    Text text = RandomText(random, random() % 300);
    Text needle = RandomText(random, 1 + random() % 4);
    size_t from = random() % 310;
    ASSERT_EQ(Find(text, needle, from), text.find(needle, from)) << round;
    ASSERT_EQ(Find(text, needle[0], from), text.find(needle[0], from)) << round;
    ASSERT_EQ(FindLast(text, needle, from), text.rfind(needle, from)) << round;
  }
}

TEST(TextSearch, TakesLinearTimeForDeceivingText) {
  constexpr size_t kSize = 2'000'000;
  Text same(kSize, u'a');
  Text needle = Text(kSize / 4, u'a') + u"b" + Text(kSize / 4, u'a');
  EXPECT_EQ(Find(same, needle), Text::npos);
  EXPECT_EQ(Find(same + needle, needle), kSize);
  Text low_halves(kSize, u'\u0D0D');
  EXPECT_EQ(Find(low_halves + u"\r", u'\r'), kSize);
}

TEST(TextPieces, SplitKeepsEmptyPiecesAndJoinPutsThemBack) {
  const std::tuple<Text, Text, std::vector<Text>> kCases[] = {
      {u"", u",", {}},
      {u"a", u",", {u"a"}},
      {u",", u",", {u"", u""}},
      {u"a,,b,", u",", {u"a", u"", u"b", u""}},
      {u"a\r\n\r\nb\rc", u"\r\n", {u"a", u"", u"b\rc"}},
      {u"aaa", u"aa", {u"", u"a"}},
  };
  for (const auto& [text, separator, pieces] : kCases) {
    EXPECT_EQ(Split(text, separator), pieces);
    EXPECT_EQ(Join(pieces, separator), text);
  }
}

TEST(TextPieces, ReplacesFromLeftToRightAndNotAgain) {
  EXPECT_EQ(ReplaceAll(u"aaa", u"aa", u"b"), u"ba");
  EXPECT_EQ(ReplaceAll(u"\r\r\n\n", kCrLf, u""), u"\r\n");
  EXPECT_EQ(ReplaceAll(u"aXb", u"X", u"XX"), u"aXXb");
  EXPECT_EQ(ReplaceAll(u"", u"X", u"Y"), u"");
}

TEST(TextNumbers, WidensSevenBitTextOnly) {
  EXPECT_EQ(FromAscii("a\x7F\x80\xFF"), u"a\u007F\uFFFD\uFFFD");
  EXPECT_EQ(Decimal(std::numeric_limits<int64_t>::min()), u"-9223372036854775808");
}

TEST(TextNumbers, ReadsWhatAutomationReads) {
  const Text good = u"0| +12 |-1.5|.5|5.|1e3|1.5E-2|1e-400";
  const std::vector<double> values = {0, 12, -1.5, 0.5, 5, 1000, 0.015, 0};
  std::vector<double> read;
  for (const Text& text : Split(good, u"|")) read.push_back(ToDouble(text));
  EXPECT_EQ(read, values);
  const Text bad = u"| |.|-|+-1|1 2|1e|1e+|1.2.3|0x10|inf|nan|\t1|\u0661";
  for (const Text& text : Split(bad, u"|")) {
    EXPECT_FALSE(IsNumeric(text)) << ::testing::PrintToString(text);
    EXPECT_EQ(ErrorOf([&] { ToDouble(text); }), kTypeMismatch);
  }
  EXPECT_EQ(ErrorOf([] { ToDouble(u"1e400"); }), kOverflow);
}

TEST(TextNumbers, RoundsHalfToEvenAndKnowsTheRanges) {
  EXPECT_EQ(ToInt32(u"2.5"), 2);
  EXPECT_EQ(ToInt32(u"3.5"), 4);
  EXPECT_EQ(ToInt16(u"-0.5"), 0);
  EXPECT_EQ(ToInt16(u"32767.4"), 32767);
  EXPECT_EQ(ToInt32(u"-2147483648.5"), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(ErrorOf([] { ToInt16(u"32767.5"); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { ToInt16(u"-32769"); }), kOverflow);
}

}  // namespace
}  // namespace vesko
