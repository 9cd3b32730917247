// Every conversion of text, and the scrambling of passwords.

#include <algorithm>

#include "Fuzz.h"
#include "config/mmEncrypt.h"
#include "message/cEncode.h"
#include "support/ErrorOf.h"

namespace vesko::fuzz {
namespace {

constexpr int32_t kCodes[] = {
    ConvUpperCase,     ConvLowerCase,    ConvProperCase, ConvWide,         ConvNarrow,
    ConvKatakana,      ConvHiragana,     ConvUnicode,    ConvFromUnicode,  ConvStrip8Bit,
    ConvAnsiRoundTrip, ConvQPEncode,     ConvQPDecode,   ConvBase64Encode, ConvBase64Decode,
    ConvUUEncode,      ConvUUDecode,     ConvReverse,    ConvAnsiBytes,    ConvUnicodeWords,
    ConvAsciiToEbcdic, ConvEbcdicToAscii};

struct Codec {
  int32_t encode;
  int32_t decode;
  bool pads;  // with NULs, to a full group
};
constexpr Codec kCodecs[] = {
    {ConvBase64Encode, ConvBase64Decode, true}, {ConvUUEncode, ConvUUDecode, true},
    {ConvQPEncode, ConvQPDecode, false},        {ConvFromUnicode, ConvUnicode, false},
    {ConvReverse, ConvReverse, false},
};

void ExpectNoSurprise(const Locale& locale, const Text& text) {
  for (int32_t code : kCodes) {
    size_t length = 0;
    const int32_t error = ErrorOf([&] {
      const Variant result = cEncode(locale).Conv(text, code, 0);
      if (const Text* converted = std::get_if<Text>(&result)) length = converted->size();
    });
    Expect(error, {kOverflow, kInvalidProcedureCall}, "no other error is raised");
    Expect(error != kInvalidProcedureCall || code == ConvQPDecode, "only that decoder fails");
    Expect(length <= 12 * text.size() + 4, "the result is not much larger");
  }
}

void ExpectUndone(const Locale& locale, const Text& text, const Codec& codec) {
  const cEncode encode(locale);
  const Text encoded = ToText(encode.Conv(text, codec.encode, 0));
  // A decoder first drops the spaces around its text, and uuencoding writes spaces.
  if (codec.encode == ConvUUEncode && Trim(encoded) != encoded) return;
  Text decoded = ToText(encode.Conv(encoded, codec.decode, 0));
  if (codec.pads) decoded.resize(std::min(decoded.size(), text.size()));
  Expect(decoded == text, "decoding undoes encoding");
}

void Run(Input input) {
  const Locale& locale = LocaleAt(input.Choose(kLocales));
  const bool inflate = input.Choose(64) == 63;
  const std::string content = input.Rest();
  ExpectNoSurprise(locale, locale.ToText(inflate ? Inflate(content) : content));

  std::string plain = content.substr(0, 4000);
  std::replace_if(
      plain.begin(), plain.end(), [](char c) { return c <= 0 || c == '_'; }, 'x');
  if (plain.empty()) return;
  const Text text = FromAscii(plain);
  for (const Codec& codec : kCodecs) ExpectUndone(locale, text, codec);
  Expect(XorWithKey(XorWithKey(text, u"key"), u"key") == text, "the key undoes itself");
  Expect(Decrypt(Encrypt(text, locale), locale) == text, "a password comes back");
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
