#include <gtest/gtest.h>

#include <optional>
#include <tuple>

#include "base/RunTimeError.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

std::string Bytes(int first, int second) {
  return {static_cast<char>(first), static_cast<char>(second)};
}

class CodePageTest : public ::testing::TestWithParam<int> {
 protected:
  std::unique_ptr<Locale> locale_ = MakeTestLocale(GetParam());
};
INSTANTIATE_TEST_SUITE_P(All, CodePageTest,
                         ::testing::Values(874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254,
                                           1255, 1256, 1257, 1258, 65001));

TEST_P(CodePageTest, LeavesSevenBitTextAsItIs) {
  EXPECT_EQ(locale_->CodePage(), GetParam());
  std::string ascii;
  for (char c = 0; c < 127; ++c) ascii += c;
  Text text(ascii.begin(), ascii.end());
  EXPECT_EQ(locale_->ToText(ascii), text);
  EXPECT_EQ(locale_->ToBytes(text), ascii);
  // The same beside a character that is none, which takes another way.
  EXPECT_EQ(locale_->ToText(ascii + "\x81").substr(0, 127), text);
  EXPECT_EQ(locale_->ToBytes(text + u"\U0001F600").substr(0, 127), ascii);
}

TEST_P(CodePageTest, DecodesTheSameInPieces) {
  std::string bytes;
  for (int i = 0; i < 3000; ++i) bytes += static_cast<char>(i * i / 7 + i % 5 * 64);
  auto decoder = locale_->NewDecoder();
  Text text;
  for (size_t at = 0, size = 0; at < bytes.size(); at += size, size = (size + 1) % 4) {
    text += decoder->Decode(std::string_view(bytes).substr(at, size));
  }
  EXPECT_EQ(text + decoder->Decode("\n\n"), locale_->ToText(bytes + "\n\n"));
}

TEST_P(CodePageTest, NeverFails) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      Text text = locale_->ToText(Bytes(first, second));
      ASSERT_FALSE(text.empty());
      ASSERT_FALSE(locale_->ToBytes(text).empty());
    }
  }
  EXPECT_EQ(locale_->ToBytes(u"a\xD800z\xDC00"), "a?z?");
  EXPECT_EQ(locale_->ToText(""), u"");
}

TEST(DoubleByteTest, CharactersOfTwoBytesComeBackAndOthersAreRefused) {
  // The least number of characters is of the table, private-use areas left aside.
  const std::tuple<int, const char*, Text, int> kCases[] = {{949, "\x81\x41", u"\uAC02", 17048},
                                                            {932, "\x81\x5C", u"\u2015", 7000},
                                                            {936, "\x81\x40", u"\u4E02", 21000},
                                                            {950, "\xA4\xA4", u"\u4E2D", 13000}};
  for (const auto& [code_page, known, character, least_characters] : kCases) {
    SCOPED_TRACE(code_page);
    const auto locale = MakeTestLocale(code_page);
    EXPECT_EQ(locale->Character(known), character);
    EXPECT_EQ(locale->TrailBytes(static_cast<uint8_t>(known[0])), 1);
    int characters = 0;
    for (int first = 0x81; first < 0xFF; ++first) {
      for (int second = 0; second < 256; ++second) {
        const std::string bytes = Bytes(first, second);
        IgnoreErrors([&] { characters += locale->ToBytes(locale->Character(bytes)) == bytes; });
      }
    }
    EXPECT_GE(characters, least_characters);
    for (const std::string& bad : {Bytes(0x85, 0), Bytes(0x85, '\r'), Bytes(0xFF, 0xFF),
                                   Bytes('a', 'b'), std::string("\x85"), std::string()}) {
      EXPECT_THROW(locale->Character(bad), RunTimeError);
    }
    // A lead byte does not swallow the end of its line.
    const Text replacement = locale->ToText("\x85");
    EXPECT_EQ(replacement.size(), 1u);
    EXPECT_EQ(locale->ToText("a\x85\r\nb"), u"a" + replacement + u"\r\nb");
  }
}

TEST(Utf8Test, CountsTrailBytesAndRefusesWhatIsNoCharacter) {
  auto locale = MakeTestLocale();
  std::string trails;
  for (uint8_t lead : {0x41, 0x81, 0xC1, 0xC2, 0xDF, 0xE0, 0xEF, 0xF0, 0xF4, 0xF5, 0xFF}) {
    trails += std::to_string(locale->TrailBytes(lead));
  }
  EXPECT_EQ(trails, "00011223300");
  EXPECT_EQ(locale->Character("\xF0\x9F\x98\x80"), u"\U0001F600");
  EXPECT_EQ(locale->Character("\xEF\xBF\xBD"), u"\uFFFD");
  for (const char* bad : {"\x80", "\xC3", "\xC3\x28", "\xED\xA0\x80", "\xC0\x80", "ab", ""}) {
    EXPECT_THROW(locale->Character(bad), RunTimeError);
  }
}

TEST(TextMappingTest, MapsCaseWidthAndKana) {
  constexpr int32_t kTurkish = 0x041F;
  constexpr int32_t kNoLocale = 0x7FFFFFFF;
  const struct {
    TextMapping mapping;
    Text from, to;
    int32_t locale_id = 0;
  } kCases[] = {
      {TextMapping::kUpper, u"a\u00E4i", u"A\u00C4I"},
      {TextMapping::kUpper, u"i", u"\u0130", kTurkish},
      {TextMapping::kUpper, u"i", u"I", kNoLocale},
      {TextMapping::kLower, u"A\u00C4I", u"a\u00E4i"},
      {TextMapping::kProper, u"tHE old-time radio's", u"The Old-Time Radio's"},
      {TextMapping::kWide, u"Az 1\uFF71", u"\uFF21\uFF5A\u3000\uFF11\u30A2"},
      {TextMapping::kNarrow, u"\uFF21\uFF5A\u3000\u30A2\uAC00", u"Az \uFF71\uAC00"},
      {TextMapping::kKatakana, u"\u3042\u3093\u309D\u30FCa", u"\u30A2\u30F3\u30FD\u30FCa"},
      {TextMapping::kHiragana, u"\u30A2\u30F3\u30FD\u30FC\u30FA",
       u"\u3042\u3093\u309D\u30FC\u30FA"},
  };
  auto locale = MakeTestLocale();
  for (const auto& row : kCases) {
    EXPECT_EQ(locale->Map(row.mapping, row.from, row.locale_id), row.to);
  }
}

TEST(FoldTest, KeepsTheLength) {
  auto locale = MakeTestLocale(kCodePageUtf8, "tr_TR");
  EXPECT_EQ(locale->Fold(u"AZ[\u00C4\u03A3\u212A\u00DF\u0130I"), u"az[\u00E4\u03C3k\u00DF\u0130i");
  EXPECT_EQ(locale->Fold(u"\U00010400\xD801x\xDC00"), u"\U00010428\xD801x\xDC00");
  Text all;
  for (char16_t c = 1; c != 0; ++c) all += c;
  Text folded = locale->Fold(all);
  EXPECT_EQ(folded.size(), all.size());
  EXPECT_EQ(locale->Fold(folded), folded);
}

TEST(CompareTest, OrdersAsAListShows) {
  auto locale = MakeTestLocale();
  EXPECT_LT(locale->Compare(u"\u00E4", u"b"), 0);
  EXPECT_GT(locale->Compare(u"b", u"A"), 0);
}

TEST(ParseDateTest, TakesDayMonthYearAndTime) {
  const std::tuple<const char*, Text, DateTime> kCases[] = {
      {"en_GB", u"1 Jan 2001 10:22:01", DateTime{2001, 1, 1, 10, 22, 1}},
      {"en_GB", u" 31  DECEMBER   1999  0:00 ", DateTime{1999, 12, 31, 0, 0, 0}},
      {"en_GB", u"01-Sep-0100 23:59", DateTime{100, 9, 1, 23, 59, 0}},
      {"en_US", u"2 1 2001", DateTime{2001, 1, 2, 0, 0, 0}},
      {"de_DE", u"3 M\u00C4RZ 2001", DateTime{2001, 3, 3, 0, 0, 0}},
      {"fr_FR", u"3 f\u00E9vr. 2001 4:5:6", DateTime{2001, 2, 3, 4, 5, 6}},
      {"ko_KR", u"3 12\uC6D4 2001", DateTime{2001, 12, 3, 0, 0, 0}},
      {"vi_VN", u"3 th\u00E1ng 12 2001", DateTime{2001, 12, 3, 0, 0, 0}},
  };
  for (const auto& [name, text, date] : kCases) {
    EXPECT_EQ(MakeTestLocale(kCodePageUtf8, name)->ParseDate(text), date)
        << ::testing::PrintToString(text);
  }
}

TEST(ParseDateTest, RefusesAllElse) {
  auto locale = MakeTestLocale();
  const Text bad =
      u"|10:22|1 Jan|Jan 1 2001|0 Jan 2001|30 Feb 2001|29 Feb 1900|1 Janu 2001|1 Jan2001|1 13 2001|"
      u"1 Jan 99|1 Jan 20001|1 Jan 2001 24:00|1 Jan 2001 10:60|1 Jan 2001 10:22:60|1 Jan 2001 10|"
      u"1 Jan 2001 10:22:|1 Jan 2001 10:22 PM|1 Jan 2001 -1:00|+1 Jan 2001|99999999999 Jan 2001|"
      u"3 M\u00E4rz 2001";
  for (const Text& text : Split(bad, u"|")) {
    EXPECT_EQ(locale->ParseDate(text), std::nullopt) << ::testing::PrintToString(text);
  }
}

}  // namespace
}  // namespace vesko
