// Header values with encoded words.

#include "Fuzz.h"
#include "message/cEncode.h"
#include "message/cMessage.h"
#include "support/ErrorOf.h"

namespace vesko::fuzz {
namespace {

constexpr TextView kFields[] = {u"subject", u"from", u"to", u"message-id"};

Text Encode(const Locale& locale, const Text& text, int32_t code) {
  return ToText(cEncode(locale).Conv(text, code, 0));
}

// Whether every byte from 0x81 leads a character of two or more bytes, which is what the decoder of
// "Q" takes for granted.
bool HasNoSingleHighBytes(const Locale& locale, const Text& text) {
  const std::string bytes = locale.ToBytes(text);
  if (locale.CodePage() == kCodePageUtf8) return true;
  for (char c : bytes) {
    if ((c & 0x80) != 0) return false;
  }
  return true;
}

void ExpectDecoded(const Locale& locale, const Text& text) {
  const cMessage message(locale);
  const Text base64 = u"=?x?B?" + Encode(locale, text, ConvBase64Encode) + u"?= rest";
  Text decoded = message.DecodeHeader(base64, u"subject");
  Expect(decoded.ends_with(u" rest"), "the rest follows an encoded word");
  decoded.resize(decoded.size() - 5);
  decoded.resize(decoded.find_last_not_of(u'\0') + 1);  // the encoder's padding
  Expect(decoded == text, "a word in base64 is decoded to what it was");
  if (!HasNoSingleHighBytes(locale, text)) return;
  const Text quoted = u"=?x?Q?" + Encode(locale, text, ConvQPEncode) + u"?= rest";
  Expect(message.DecodeHeader(quoted, u"subject") == text + u" rest",
         "a quoted word is decoded to what it was");
}

void Run(Input input) {
  const Locale& locale = LocaleAt(input.Choose(kLocales));
  const TextView field = kFields[input.Choose(std::size(kFields))];
  const bool inflate = input.Choose(64) == 63;
  const std::string content = input.Rest();
  const Text value = locale.ToText(inflate ? Inflate(content) : content);
  const Text decoded = cMessage(locale).DecodeHeader(value, field);
  Expect(decoded.size() <= 2 * value.size() + 1, "a decoded value is not much larger");
  if (!Contains(value, u"?")) {
    Expect(!Contains(decoded, u"?"), "a value without an encoded word stays as it is");
  }

  const Text text = Representable(locale, content);
  const bool fits = text.size() < 6000 && !text.empty() && text.back() != u'\0';
  if (fits) ExpectDecoded(locale, text);
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
