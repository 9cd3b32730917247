#include <gtest/gtest.h>

#include <map>
#include <memory>

#include "message/cEncode.h"
#include "support/ErrorOf.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

using std::literals::operator""s;

// Opening a locale takes longer than any conversion here.
const Locale& LocaleOf(int code_page) {
  static std::map<int, std::unique_ptr<Locale>> locales;
  std::unique_ptr<Locale>& locale = locales[code_page];
  if (!locale) locale = MakeTestLocale(code_page);
  return *locale;
}

Variant ConvIn(int code_page, const Variant& data, int32_t code) {
  return cEncode(LocaleOf(code_page)).Conv(data, code, 0);
}

Text TextIn(int code_page, const Variant& data, int32_t code) {
  return std::get<Text>(ConvIn(code_page, data, code));
}

int32_t ErrorIn(int code_page, const Text& data, int32_t code) {
  return ErrorOf([&] { ConvIn(code_page, data, code); });
}

// Rows separated by "‖": a text, an arrow, and the expected result.
void ExpectAll(int code_page, int32_t code, const Text& rows) {
  for (const Text& row : Split(rows, u"‖")) {
    size_t arrow = row.find(u'→');
    EXPECT_EQ(TextIn(code_page, row.substr(0, arrow), code), row.substr(arrow + 1))
        << ::testing::PrintToString(row);
  }
}

TEST(Encode, KnownCodesGiveEmptyTextForDataWithoutLengthAndOthersEmpty) {
  for (int32_t code : {1, 2, 3, 4, 8, 16, 32, 64, 128, 99}) {
    EXPECT_EQ(ConvIn(949, Text(), code), Variant(Text())) << code;
  }
  for (int32_t code = ConvStrip8Bit; code <= ConvEbcdicToAscii; ++code) {
    EXPECT_EQ(ConvIn(949, Variant(), code), Variant(Text())) << code;
  }
  for (int32_t code : {0, 5, 63, 192, 255, 269, -1}) {
    EXPECT_TRUE(IsEmpty(ConvIn(949, Text(u"a"), code))) << code;
  }
}

// Groups count bytes, not characters: three Korean characters need two groups.
TEST(Encode, Base64PadsWithNul) {
  ExpectAll(949, ConvBase64Encode, u"Hello→SGVsbG8A‖a→YQAA‖abc→YWJj‖\uAC00ab→sKFhYgAA"s);
}

// For a byte beyond the table, the value from the previous group stays.
TEST(Encode, Base64IsDecodedWhateverItsPadIs) {
  ExpectAll(949, ConvBase64Decode,
            u"SGVsbG8=→Hello‖SGVsbG8→Hello‖  SGVs\r\nbG8= →Hello‖QQ→A‖QQ=→A‖QQ==→A‖QUJD=→ABC‖"
            u"QUJD==→ABC‖QUJD===→ABC‖Q→@‖   →‖\r\n→‖====→\0‖QU JD→A@\x09\x0C‖sKE=→\uAC00‖"
            u"QUJD\uAC00\uAC01\uAC02A→ABCABC"s);
  ExpectAll(1252, ConvBase64Decode,
            u"SGVs\nbG8→Hel\u0001±¼‖\u00E9UJD→\u0001BC‖QUJD\u00E9UJD→ABCABC"s);
  ExpectAll(kCodePageUtf8, ConvBase64Decode, u"w6Q=→\u00E4"s);
}

TEST(Encode, QuotedPrintableEscapesAllAndReadsWhatItCan) {
  ExpectAll(949, ConvQPEncode, u"Hi→=48=69‖\n\uAC00=→=0A=B0=A1=3D"s);
  ExpectAll(949, ConvQPDecode,
            u"a_b=3Dc→a b=c‖=3d=3D→==‖=B0=A1x→\uAC00x‖=B0?A1x→\uAC00x‖=\r\nx→\0x‖=4→\u0004‖"
            u"=4Gx→\u0004x‖=G4x→\0x‖a=→a\0‖=7F\u00E4→\u007F\u00E4"s);
  ExpectAll(kCodePageUtf8, ConvQPDecode,
            u"=C3=A4=E2=82=AC=F0=9F=98=80!→\u00E4\u20AC\U0001F600!‖=80→\uFFFD"s);
}

TEST(Encode, UuTakesMissingCharactersForSpacesAndWrapsAround) {
  ExpectAll(949, ConvUUEncode, u"Cat→0V%T‖C→0P  "s);
  ExpectAll(1252, ConvUUDecode,
            u" 0V\r\n%T →Cat‖0P``→C\0\0‖0P→C\0\0‖\t!!!→\u00A4\u0010A‖a!!!→\u0004\u0010A"s);
}

TEST(Encode, ConvertsCharactersOneByOne) {
  ExpectAll(949, ConvReverse, u"ab\uAC00→\uAC00ba");
  ExpectAll(949, ConvUpperCase, u"a\u00E4→A\u00C4");
  ExpectAll(949, ConvProperCase, u"hELLO wORLD→Hello World");
  ExpectAll(949, ConvFromUnicode, u"ABC\uAC00→\u4241\uB043\u00A1");
  ExpectAll(949, ConvUnicode, u"\u4241\uB043\u00A1→ABC\uAC00");
  ExpectAll(1252, ConvStrip8Bit, u"a\u00E9\u20AC→ai\0"s);
  ExpectAll(1252, ConvAnsiRoundTrip, u"a\u20AC\uAC00→a\u20AC?");
  ExpectAll(1252, ConvAsciiToEbcdic, u"A!→\u00C1O‖[]^|~a0→JZ_j\u00A1\u0081\u00F0");
}

TEST(Encode, EbcdicIsAOneToOneMapping) {
  Text all;
  for (int byte = 1; byte < 256; ++byte) all += TextIn(1252, ByteArray{uint8_t(byte)}, ConvUnicode);
  Text ebcdic = TextIn(1252, all, ConvAsciiToEbcdic);
  EXPECT_EQ(TextIn(1252, ebcdic, ConvEbcdicToAscii), all);
  EXPECT_EQ(TextIn(1252, TextIn(1252, all, ConvEbcdicToAscii), ConvAsciiToEbcdic), all);
}

TEST(Encode, ArraysHoldBytesAndUnits) {
  EXPECT_EQ(ConvIn(949, Text(u"a\uAC00"), ConvAnsiBytes), Variant(ByteArray{'a', 0xB0, 0xA1}));
  EXPECT_EQ(ConvIn(949, Text(u"a\uAC00"), ConvUnicodeWords), Variant(WordArray{'a', -0x5400}));
  EXPECT_EQ(ConvIn(949, ByteArray{0xB0, 0xA1, 'b'}, ConvUnicode), Variant(Text(u"\uAC00b")));
  EXPECT_EQ(ConvIn(949, int32_t{-12}, ConvReverse), Variant(Text(u"21-")));
}

TEST(Encode, CountersAreSixteenBitsWide) {
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

TEST(Encode, QuotedPrintableFailsOnlyForCharactersThatTheCodePageLacks) {
  for (const Text bad : {u"=FF=FF", u"=B0", u"=B0=", u"=B0=0D"}) {
    EXPECT_EQ(ErrorIn(949, bad, ConvQPDecode), kInvalidProcedureCall);
  }
  // A trail byte is consumed even in single-byte code pages, which have no such characters.
  EXPECT_EQ(ErrorIn(1252, u"=E9=E9", ConvQPDecode), kInvalidProcedureCall);
  for (const Text bad : {u"=81", u"=C3", u"=C3=C3", u"=E2=82", u"=F5=80=80=80", u"=ED=A0=80"}) {
    EXPECT_EQ(ErrorIn(kCodePageUtf8, bad, ConvQPDecode), kInvalidProcedureCall);
  }
}

TEST(Encode, IsBinaryAsksForEightBits) {
  cEncode encode(LocaleOf(1252));
  EXPECT_FALSE(encode.IsBinary(Text(u"a\u007F")));
  EXPECT_TRUE(encode.IsBinary(Text(u"a\u00E9")));
  EXPECT_FALSE(encode.IsBinary(Text(u"\uAC00"))) << "the code page makes it a question mark";
}

TEST(Encode, TrimQuotesTakesSpacesOnceAndQuotesAll) {
  EXPECT_EQ(cEncode::TrimQuotes(u"  \"\"name\" "), u"name");
  EXPECT_EQ(cEncode::TrimQuotes(u"\" \"na\"me \""), u" \"na\"me ");
  EXPECT_EQ(cEncode::TrimQuotes(u"\"\"\""), u"");
}

}  // namespace
}  // namespace vesko
