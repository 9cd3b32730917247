#include "desktop/common/ShownText.h"

#include <algorithm>

namespace vesko {
namespace {

constexpr size_t kLongestLine = 1000;
// Wrapping takes quadratic time in the length of a word.
constexpr size_t kLongestWord = 2000;

bool Between(char16_t c, char16_t first, char16_t last) { return c >= first && c <= last; }

/// Control characters, line and paragraph separators, embeddings, overrides and isolates of the
/// direction, objects and non-characters.
bool IsUnshowable(char16_t c) {
  return c < 0x20 || Between(c, 0x7F, 0x9F) || Between(c, 0x2028, 0x202E) ||
         Between(c, 0x2066, 0x2069) || Between(c, 0xFDD0, 0xFDEF) || c == 0xFFFC || c >= 0xFFFE;
}

bool IsHighSurrogate(char16_t c) { return Between(c, 0xD800, 0xDBFF); }
bool IsLowSurrogate(char16_t c) { return Between(c, 0xDC00, 0xDFFF); }

bool IsSpace(char16_t c) { return c <= u' ' || c == 0x3000 || Between(c, 0x2000, 0x200A); }

/// Never ends in the middle of a surrogate pair.
TextView Head(TextView text, size_t longest) {
  if (text.size() <= longest) return text;
  return text.substr(0, longest - (longest > 0 && IsHighSurrogate(text[longest - 1]) ? 1 : 0));
}

}  // namespace

Text OneLine(TextView text) {
  Text line(Head(text, kLongestLine));
  std::replace_if(line.begin(), line.end(), IsUnshowable, u' ');
  return line;
}

Text Lines(TextView text, size_t longest, TextView line_end, bool* whole) {
  const TextView head = Head(text, longest);
  bool broken = false;
  size_t word = 0;
  Text lines;
  lines.reserve(head.size());
  for (size_t i = 0; i < head.size(); ++i) {
    const char16_t c = head[i];
    word = IsSpace(c) ? 0 : word + 1;
    if (c == u'\r' || c == u'\n') {
      const bool pair = c == u'\r' && i + 1 < head.size() && head[i + 1] == u'\n';
      if (!pair) lines.append(line_end);
      continue;
    }
    if (word > kLongestWord && !IsLowSurrogate(c)) {
      lines.append(line_end);
      word = 1;
      broken = true;
    }
    lines.push_back(c != u'\t' && IsUnshowable(c) ? u' ' : c);
  }
  if (whole) *whole = !broken && head.size() == text.size();
  return lines;
}

}  // namespace vesko
