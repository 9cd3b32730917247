#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "base/RunTimeError.h"
#include "message/cEncode.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

const Text kNul(1, u'\0');
constexpr int32_t kFirstCode = ConvStrip8Bit;
constexpr int32_t kLastCode = ConvEbcdicToAscii;

// Opening a locale takes longer than any conversion here.
const Locale& LocaleOf(int code_page) {
  static std::map<int, std::unique_ptr<Locale>> locales;
  std::unique_ptr<Locale>& locale = locales[code_page];
  if (!locale) locale = MakeTestLocale(code_page);
  return *locale;
}

class EncodeTest : public ::testing::Test {
 protected:
  static Variant ConvIn(int code_page, const Variant& data, int32_t code) {
    return cEncode(LocaleOf(code_page)).Conv(data, code, 0);
  }

  static Text TextIn(int code_page, const Variant& data, int32_t code) {
    return std::get<Text>(ConvIn(code_page, data, code));
  }

  // Pairs of text and what it becomes.
  static void ExpectAll(int code_page, int32_t code,
                        const std::vector<std::pair<Text, Text>>& rows) {
    for (const auto& [from, to] : rows) {
      EXPECT_EQ(TextIn(code_page, from, code), to) << ::testing::PrintToString(from);
    }
  }

  static int32_t ErrorIn(int code_page, const Text& data, int32_t code) {
    try {
      ConvIn(code_page, data, code);
      return 0;
    } catch (const RunTimeError& error) {
      return error.Number();
    }
  }
};

TEST_F(EncodeTest, EveryCodeGivesEmptyTextForDataWithoutLength) {
  for (int32_t code : {1, 2, 3, 4, 8, 16, 32, 64, 128, 99}) {
    EXPECT_EQ(ConvIn(949, Text(), code), Variant(Text())) << code;
  }
  for (int32_t code = kFirstCode; code <= kLastCode; ++code) {
    EXPECT_EQ(ConvIn(949, Text(), code), Variant(Text())) << code;
    EXPECT_EQ(ConvIn(949, Variant(), code), Variant(Text())) << code;
  }
}

TEST_F(EncodeTest, UnknownCodesGiveEmpty) {
  for (int32_t code : {0, 5, 63, 192, 255, 269, -1}) {
    EXPECT_TRUE(IsEmpty(ConvIn(949, Text(u"a"), code))) << code;
  }
}

TEST_F(EncodeTest, Base64PadsWithNul) {
  ExpectAll(949, ConvBase64Encode,
            {{u"Hello", u"SGVsbG8A"},
             {u"a", u"YQAA"},
             {u"abc", u"YWJj"},
             // Four bytes of three characters: the second group is filled up.
             {u"\uAC00ab", u"sKFhYgAA"}});
}

TEST_F(EncodeTest, Base64IsDecodedWhateverItsPadIs) {
  ExpectAll(949, ConvBase64Decode,
            {{u"SGVsbG8=", u"Hello"},
             {u"SGVsbG8", u"Hello"},
             {u"  SGVs\r\nbG8= ", u"Hello"},
             {u"QQ", u"A"},
             {u"QQ=", u"A"},
             {u"QQ==", u"A"},
             {u"QUJD=", u"ABC"},
             {u"QUJD==", u"ABC"},
             {u"QUJD===", u"ABC"},
             {u"Q", u"@"},
             {u"   ", u""},
             {u"\r\n", u""},
             {u"====", kNul},
             {u"QU JD", u"A@\x09\x0C"},
             {u"sKE=", u"\uAC00"},
             // Two bytes to a character: these characters are eleven bytes, two full groups.
             {u"QUJD\uAC00\uAC01\uAC02A", u"ABCABC"}});
  ExpectAll(1252, ConvBase64Decode,
            {{u"SGVs\nbG8", u"Hel\u0001\xB1\xBC"},
             {u"\u00E9UJD", u"\u0001BC"},
             // The table lacks the byte: its place keeps what it had in the group before.
             {u"QUJD\u00E9UJD", u"ABCABC"}});
  ExpectAll(kCodePageUtf8, ConvBase64Decode, {{u"w6Q=", u"\u00E4"}});
}

TEST_F(EncodeTest, QuotedPrintableEscapesAllAndReadsWhatItCan) {
  ExpectAll(949, ConvQPEncode, {{u"Hi", u"=48=69"}, {u"\n\uAC00=", u"=0A=B0=A1=3D"}});
  ExpectAll(949, ConvQPDecode,
            {{u"a_b=3Dc", u"a b=c"},
             {u"=3d=3D", u"=="},
             {u"=B0=A1x", u"\uAC00x"},
             {u"=B0?A1x", u"\uAC00x"},
             {u"=\r\nx", kNul + u"x"},
             {u"=4", u"\u0004"},
             {u"=4Gx", u"\u0004x"},
             {u"=G4x", kNul + u"x"},
             {u"a=", u"a" + kNul},
             {u"=7F\u00E4", u"\u007F\u00E4"}});
  ExpectAll(kCodePageUtf8, ConvQPDecode,
            {{u"=C3=A4=E2=82=AC=F0=9F=98=80!", u"\u00E4\u20AC\U0001F600!"}, {u"=80", u"\uFFFD"}});
}

TEST_F(EncodeTest, UuTakesMissingCharactersForSpacesAndWrapsAround) {
  ExpectAll(949, ConvUUEncode, {{u"Cat", u"0V%T"}, {u"C", u"0P  "}});
  ExpectAll(1252, ConvUUDecode,
            {{u" 0V\r\n%T ", u"Cat"},
             {u"0P``", u"C" + kNul + kNul},
             {u"0P", u"C" + kNul + kNul},
             {u"\t!!!", u"\xA4\x10\x41"},
             {u"a!!!", u"\u0004\x10\x41"}});
}

TEST_F(EncodeTest, ConvertsCharactersOneByOne) {
  ExpectAll(949, ConvReverse, {{u"ab\uAC00", u"\uAC00ba"}});
  ExpectAll(949, ConvUpperCase, {{u"a\u00E4", u"A\u00C4"}});
  ExpectAll(949, ConvProperCase, {{u"hELLO wORLD", u"Hello World"}});
  ExpectAll(949, ConvFromUnicode, {{u"ABC\uAC00", u"\u4241\uB043\u00A1"}});
  ExpectAll(949, ConvUnicode, {{u"\u4241\uB043\u00A1", u"ABC\uAC00"}});
  ExpectAll(1252, ConvStrip8Bit, {{u"a\u00E9\u20AC", u"ai" + kNul}});
  ExpectAll(1252, ConvAnsiRoundTrip, {{u"a\u20AC\uAC00", u"a\u20AC?"}});
}

TEST_F(EncodeTest, EbcdicIsAOneToOneMapping) {
  Text all;
  for (int byte = 1; byte < 256; ++byte) all += TextIn(1252, ByteArray{uint8_t(byte)}, ConvUnicode);
  Text ebcdic = TextIn(1252, all, ConvAsciiToEbcdic);
  ExpectAll(1252, ConvAsciiToEbcdic,
            {{u"A!", u"\u00C1O"}, {u"[]^|~a0", u"JZ_j\u00A1\u0081\u00F0"}});
  EXPECT_EQ(TextIn(1252, ebcdic, ConvEbcdicToAscii), all);
  EXPECT_EQ(TextIn(1252, TextIn(1252, all, ConvEbcdicToAscii), ConvAsciiToEbcdic), all);
}

TEST_F(EncodeTest, ArraysHoldBytesAndUnits) {
  EXPECT_EQ(ConvIn(949, Text(u"a\uAC00"), ConvAnsiBytes), Variant(ByteArray{'a', 0xB0, 0xA1}));
  EXPECT_EQ(ConvIn(949, Text(u"a\uAC00"), ConvUnicodeWords), Variant(WordArray{'a', -0x5400}));
  EXPECT_EQ(ConvIn(949, ByteArray{0xB0, 0xA1, 'b'}, ConvUnicode), Variant(Text(u"\uAC00b")));
  EXPECT_EQ(ConvIn(949, int32_t{-12}, ConvReverse), Variant(Text(u"21-")));
}

TEST_F(EncodeTest, CountersAreSixteenBitsWide) {
  for (int32_t code : {ConvBase64Encode, ConvUUEncode}) {
    EXPECT_EQ(TextIn(949, Text(24573, u'a'), code).size(), 32764u);
    EXPECT_EQ(ErrorIn(949, Text(24574, u'a'), code), kOverflow);
    EXPECT_EQ(ErrorIn(949, Text(12288, u'\uAC00'), code), kOverflow);
  }
  for (int32_t code : {ConvAsciiToEbcdic, ConvEbcdicToAscii}) {
    EXPECT_EQ(ErrorIn(949, Text(32768, u'a'), code), 0);
    EXPECT_EQ(ErrorIn(949, Text(32769, u'a'), code), kOverflow);
  }
  EXPECT_EQ(TextIn(949, Text(40000, u'a'), ConvQPEncode).size(), 120000u);
}

TEST_F(EncodeTest, QuotedPrintableFailsOnlyForCharactersThatTheCodePageLacks) {
  for (const Text bad : {u"=FF=FF", u"=B0", u"=B0=", u"=B0=0D"}) {
    EXPECT_EQ(ErrorIn(949, bad, ConvQPDecode), kInvalidProcedureCall);
  }
  // One trail byte is taken in single-byte code pages too, where no such character is.
  EXPECT_EQ(ErrorIn(1252, u"=E9=E9", ConvQPDecode), kInvalidProcedureCall);
  for (const Text bad : {u"=81", u"=C3", u"=C3=C3", u"=E2=82", u"=F5=80=80=80", u"=ED=A0=80"}) {
    EXPECT_EQ(ErrorIn(kCodePageUtf8, bad, ConvQPDecode), kInvalidProcedureCall);
  }
}

TEST_F(EncodeTest, EncodersAreUndoneByTheirDecoders) {
  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    Text text;
    for (size_t i = 3 * (1 + random() % 20); i > 0; --i) text += char16_t(33 + random() % 94);
    for (int32_t code : {ConvBase64Encode, ConvQPEncode, ConvFromUnicode}) {
      int32_t back = code == ConvFromUnicode ? ConvUnicode : code + 1;
      Text plain = code == ConvQPEncode ? ReplaceAll(text, u"_", u"-") : text;
      ASSERT_EQ(TextIn(949, TextIn(949, plain, code), back), plain) << code;
    }
    // A space at either end of uuencoded text would be trimmed as a blank.
    Text uu = TextIn(949, text, ConvUUEncode);
    if (Trim(uu) == uu) {
      ASSERT_EQ(TextIn(949, uu, ConvUUDecode), text);
    }
  }
}

TEST_F(EncodeTest, IsBinaryAsksForEightBits) {
  cEncode encode(LocaleOf(1252));
  EXPECT_FALSE(encode.IsBinary(Text(u"")));
  EXPECT_FALSE(encode.IsBinary(Text(u"a\u007F")));
  EXPECT_TRUE(encode.IsBinary(Text(u"a\u00E9")));
  EXPECT_FALSE(encode.IsBinary(Text(u"\uAC00"))) << "the code page makes it a question mark";
}

TEST_F(EncodeTest, TrimQuotesTakesSpacesOnceAndQuotesAll) {
  EXPECT_EQ(cEncode::TrimQuotes(u"  \"\"name\" "), u"name");
  EXPECT_EQ(cEncode::TrimQuotes(u"\" name \""), u" name ");
  EXPECT_EQ(cEncode::TrimQuotes(u"\" \"name"), u" \"name");
  EXPECT_EQ(cEncode::TrimQuotes(u"\"\"\""), u"");
  EXPECT_EQ(cEncode::TrimQuotes(u"na\"me"), u"na\"me");
}

}  // namespace
}  // namespace vesko
