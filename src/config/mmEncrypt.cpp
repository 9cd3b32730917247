#include "config/mmEncrypt.h"

#include <limits>

#include "base/RunTimeError.h"
#include "base/Variant.h"
#include "message/cEncode.h"

namespace vesko {
namespace {

constexpr TextView kKey = u"4820937-118265";

Text Convert(const Text& text, int32_t code, const Locale& locale) {
  return ToText(cEncode(locale).Conv(text, code, 0));
}

}  // namespace

Text Encrypt(TextView plain, const Locale& locale) {
  Text escaped = Convert(Text(plain), ConvQPEncode, locale);
  return XorWithKey(Convert(escaped, ConvBase64Encode, locale), kKey);
}

Text Decrypt(TextView scrambled, const Locale& locale) {
  Text escaped = Convert(XorWithKey(scrambled, kKey), ConvBase64Decode, locale);
  return Convert(escaped, ConvQPDecode, locale);
}

Text XorWithKey(TextView text, TextView key) {
  if (text.size() > size_t{std::numeric_limits<int16_t>::max()}) throw RunTimeError(kOverflow);
  Text changed(text);
  for (size_t i = 0; i < changed.size(); ++i) {
    char16_t code = changed[i] ^ key[(i + 1) % key.size()];
    if (changed[i] < 256 && code != 0) changed[i] = code;
  }
  return changed;
}

}  // namespace vesko
