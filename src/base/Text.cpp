#include "base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <system_error>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

constexpr size_t kBlock = 64;

// One block of candidates: without an early exit the compiler turns this into vector code.
bool BlockHas(const char16_t* text, char16_t wanted) {
  uint16_t any = 0;
  for (size_t i = 0; i < kBlock; ++i) any |= text[i] == wanted;
  return any != 0;
}

// Asks for the first and the last character of a needle together: far fewer false candidates.
bool BlockHasBoth(const char16_t* text, char16_t first, size_t distance, char16_t last) {
  uint16_t any = 0;
  for (size_t i = 0; i < kBlock; ++i) any |= (text[i] == first) & (text[i + distance] == last);
  return any != 0;
}

size_t FindByBlocks(TextView text, char16_t needle, size_t at) {
  while (at + kBlock <= text.size() && !BlockHas(text.data() + at, needle)) at += kBlock;
  for (; at < text.size(); ++at) {
    if (text[at] == needle) return at;
  }
  return Text::npos;
}

// Knuth, Morris and Pratt: slower per character, but linear whatever the text is.
size_t FindLinear(TextView text, TextView needle, size_t from) {
  std::vector<size_t> border(needle.size() + 1, 0);
  for (size_t i = 1, k = 0; i < needle.size(); ++i) {
    while (k > 0 && needle[i] != needle[k]) k = border[k];
    if (needle[i] == needle[k]) ++k;
    border[i + 1] = k;
  }
  for (size_t i = from, k = 0; i < text.size(); ++i) {
    while (k > 0 && text[i] != needle[k]) k = border[k];
    if (text[i] == needle[k]) ++k;
    if (k == needle.size()) return i + 1 - k;
  }
  return Text::npos;
}

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

size_t SkipDigits(TextView text, size_t at) {
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at;
}

size_t SkipSign(TextView text, size_t at) {
  return at < text.size() && (text[at] == u'+' || text[at] == u'-') ? at + 1 : at;
}

// Where the mantissa that starts at `at` ends, or npos when it has no digit.
size_t SkipMantissa(TextView text, size_t at) {
  size_t end = SkipDigits(text, at);
  size_t digits = end - at;
  if (end < text.size() && text[end] == u'.') {
    size_t fraction = end + 1;
    end = SkipDigits(text, fraction);
    digits += end - fraction;
  }
  return digits == 0 ? Text::npos : end;
}

bool EndsAsNumber(TextView text, size_t at) {
  if (at == text.size()) return true;
  if (text[at] != u'e' && text[at] != u'E') return false;
  size_t digits = SkipSign(text, at + 1);
  return digits < text.size() && SkipDigits(text, digits) == text.size();
}

// Numbers too small for the type are zero; only those too large overflow.
bool IsTiny(std::string_view number) {
  size_t exponent = number.find_first_of("eE");
  if (exponent != std::string_view::npos && exponent + 1 < number.size()) {
    return number[exponent + 1] == '-';
  }
  return number.substr(0, number.find('.')).find_first_not_of("+-0") == std::string_view::npos;
}

template <typename Integer>
Integer ToInteger(TextView text) {
  double rounded = std::nearbyint(ToDouble(text));
  if (rounded < std::numeric_limits<Integer>::min() ||
      rounded > std::numeric_limits<Integer>::max()) {
    throw RunTimeError(kOverflow);
  }
  return static_cast<Integer>(rounded);
}

}  // namespace

Text FromAscii(std::string_view ascii) {
  Text text(ascii.size(), u'\0');
  std::transform(ascii.begin(), ascii.end(), text.begin(), [](char c) {
    auto byte = static_cast<unsigned char>(c);
    return byte < 128 ? static_cast<char16_t>(byte) : u'\uFFFD';
  });
  return text;
}

TextView Trim(TextView text) {
  while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
  return text;
}

TextView TrimNull(TextView text) { return text.substr(0, Find(text, u'\0')); }

// The C library's byte search is the fastest there is, as long as few bytes deceive it: the low
// half of the wanted character also stands in other characters, or as a high half.
size_t Find(TextView text, char16_t needle, size_t from) {
  const auto* bytes = reinterpret_cast<const char*>(text.data());
  const size_t size = text.size() * sizeof(char16_t);
  size_t at = from * sizeof(char16_t);
  for (size_t deceived = 0; at < size && deceived <= 8 + at / kBlock; ++deceived) {
    const void* hit = std::memchr(bytes + at, needle & 0xFF, size - at);
    if (hit == nullptr) return Text::npos;
    at = static_cast<const char*>(hit) - bytes;
    if (text[at / sizeof(char16_t)] == needle) return at / sizeof(char16_t);
    ++at;
  }
  return FindByBlocks(text, needle, at / sizeof(char16_t));
}

size_t Find(TextView text, TextView needle, size_t from) {
  if (from > text.size() || text.size() - from < needle.size()) return Text::npos;
  if (needle.empty()) return from;
  const size_t distance = needle.size() - 1;
  const size_t end = text.size() - distance;  // behind the last possible position
  const size_t patience = 4 * (text.size() - from);
  size_t effort = 0;
  size_t at = from;
  while (at < end) {
    if (at + kBlock <= end &&
        !BlockHasBoth(text.data() + at, needle.front(), distance, needle.back())) {
      at += kBlock;
      continue;
    }
    for (const size_t stop = std::min(at + kBlock, end); at < stop; ++at) {
      if (text[at] != needle.front() || text[at + distance] != needle.back()) continue;
      auto differs = std::mismatch(needle.begin(), needle.end(), text.begin() + at).first;
      if (differs == needle.end()) return at;
      effort += differs - needle.begin();
    }
    if (effort > patience) return FindLinear(text, needle, at);
  }
  return Text::npos;
}

size_t FindLast(TextView text, TextView needle, size_t from) {
  if (text.size() < needle.size()) return Text::npos;
  size_t end = std::min(from, text.size() - needle.size()) + 1;
  if (needle.empty()) return end - 1;
  const size_t distance = needle.size() - 1;
  while (end > 0) {
    if (end >= kBlock &&
        !BlockHasBoth(text.data() + end - kBlock, needle.front(), distance, needle.back())) {
      end -= kBlock;
      continue;
    }
    for (const size_t stop = end - std::min(end, kBlock); end > stop; --end) {
      if (text.substr(end - 1, needle.size()) == needle) return end - 1;
    }
  }
  return Text::npos;
}

std::vector<TextView> SplitViews(TextView text, TextView separator) {
  std::vector<TextView> pieces;
  if (text.empty()) return pieces;
  size_t start = 0;
  for (size_t at; (at = Find(text, separator, start)) != Text::npos;
       start = at + separator.size()) {
    pieces.push_back(text.substr(start, at - start));
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

std::vector<Text> Split(TextView text, TextView separator) {
  std::vector<TextView> views = SplitViews(text, separator);
  return {views.begin(), views.end()};
}

Text Join(const std::vector<Text>& pieces, TextView separator) {
  Text joined;
  if (pieces.empty()) return joined;
  size_t size = separator.size() * (pieces.size() - 1);
  for (const Text& piece : pieces) size += piece.size();
  joined.reserve(size);
  for (const Text& piece : pieces) {
    if (&piece != &pieces.front()) joined += separator;
    joined += piece;
  }
  return joined;
}

Text ReplaceAll(TextView text, TextView what, TextView with) {
  size_t at = Find(text, what);
  if (at == Text::npos) return Text(text);
  Text replaced;
  replaced.reserve(text.size());
  size_t start = 0;
  for (; at != Text::npos; at = Find(text, what, start)) {
    replaced.append(text.substr(start, at - start)).append(with);
    start = at + what.size();
  }
  return replaced.append(text.substr(start));
}

Text Decimal(int64_t number) {
  std::array<char, 24> digits;
  char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  return Text(digits.data(), end);
}

bool IsNumeric(TextView text) {
  TextView number = Trim(text);
  size_t end = SkipMantissa(number, SkipSign(number, 0));
  return end != Text::npos && EndsAsNumber(number, end);
}

double ToDouble(TextView text) {
  if (!IsNumeric(text)) throw RunTimeError(kTypeMismatch);
  TextView number = Trim(text);
  std::string digits(number.begin() + (number.front() == u'+' ? 1 : 0), number.end());
  double value = 0;
  auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec != std::errc::result_out_of_range) return value;
  if (IsTiny(digits)) return 0;
  throw RunTimeError(kOverflow);
}

int16_t ToInt16(TextView text) { return ToInteger<int16_t>(text); }
int32_t ToInt32(TextView text) { return ToInteger<int32_t>(text); }

}  // namespace vesko
