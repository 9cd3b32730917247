// Bytes and text in every kind of code page.

#include "Fuzz.h"

namespace vesko::fuzz {
namespace {

void ExpectPiecesDoNotMatter(const Locale& locale, const std::string& bytes, size_t piece) {
  const auto decoder = locale.NewDecoder();
  const auto whole_decoder = locale.NewDecoder();
  Text text;
  for (size_t at = 0; at < bytes.size(); at += piece) {
    text += decoder->Decode(std::string_view(bytes).substr(at, piece));
  }
  Expect(text == whole_decoder->Decode(bytes), "pieces give what the whole gives");
  Expect(locale.ToText(bytes).starts_with(text), "only an incomplete character is held back");
}

void ExpectMappings(const Locale& locale, const Text& text) {
  const Text folded = locale.Fold(text);
  Expect(folded.size() == text.size(), "folding keeps the length");
  Expect(locale.Fold(folded) == folded, "what is folded stays");
  Expect(locale.Compare(text, text) == 0, "a text equals itself");
  const Text half = text.substr(text.size() / 2);
  const int order = locale.Compare(half, text);
  Expect((order > 0) == (locale.Compare(text, half) < 0), "order has two sides");
  for (auto mapping :
       {TextMapping::kUpper, TextMapping::kLower, TextMapping::kProper, TextMapping::kWide,
        TextMapping::kNarrow, TextMapping::kKatakana, TextMapping::kHiragana}) {
    Expect(locale.Map(mapping, text).size() <= 3 * text.size() + 4, "mappings grow a little");
  }
}

void Run(Input input) {
  const Locale& locale = LocaleAt(input.Choose(kLocales));
  const size_t piece = 1 + input.Choose(10);
  const bool inflate = input.Choose(64) == 63;
  const std::string bytes = inflate ? Inflate(input.Rest()) : input.Rest();

  const Text text = locale.ToText(bytes);
  Expect(text.size() <= bytes.size(), "text has no more units than its bytes");
  const Text kept = Representable(locale, bytes);
  Expect(locale.ToText(locale.ToBytes(kept)) == kept, "what the code page has comes back");
  Expect(locale.ToBytes(text).size() <= 4 * text.size(), "a unit has four bytes at most");
  ExpectPiecesDoNotMatter(locale, bytes, piece);
  ExpectMappings(locale, text);
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
