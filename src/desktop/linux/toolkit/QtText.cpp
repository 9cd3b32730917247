#include "desktop/linux/toolkit/QtText.h"

#include <algorithm>

namespace vesko {
namespace {

constexpr size_t kLongestLine = 1000;
constexpr int kLongestWord = 16;
// Wrapping takes quadratic time in the length of a word.
constexpr size_t kLongestUnbroken = 2000;
constexpr QChar kZeroWidthSpace(0x200B);

bool Between(char16_t c, char16_t first, char16_t last) { return c >= first && c <= last; }

// Characters that draw nothing of their own, break the line, or mean something inside the toolkit.
bool IsControl(char16_t c) {
  return c < 0x20 || Between(c, 0x7F, 0x9F) || Between(c, 0x2028, 0x202E) ||
         Between(c, 0x2066, 0x2069) || Between(c, 0xFDD0, 0xFDEF) || c == 0xFFFC || c >= 0xFFFE;
}

// Never ends in the middle of a surrogate pair.
TextView Head(TextView text, size_t longest) {
  if (text.size() <= longest) return text;
  return text.substr(0, QChar::isHighSurrogate(text[longest - 1]) ? longest - 1 : longest);
}

QChar ShownInLines(char16_t c) {
  if (c == u'\r' || c == u'\n') return u'\n';
  return c != u'\t' && IsControl(c) ? u' ' : c;
}

}  // namespace

QString ToQString(TextView text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

Text ToText(const QString& text) {
  const auto* units = reinterpret_cast<const char16_t*>(text.utf16());
  return Text(units, static_cast<size_t>(text.size()));
}

QString OneLine(TextView text) {
  QString line = ToQString(Head(text, kLongestLine));
  std::replace_if(
      line.begin(), line.end(), [](QChar c) { return IsControl(c.unicode()); }, QChar(u' '));
  return line;
}

QString Lines(TextView text, size_t longest, bool* whole) {
  const TextView head = Head(text, longest);
  bool broken = false;
  size_t word = 0;
  QString lines;
  lines.reserve(static_cast<qsizetype>(head.size()));
  for (size_t i = 0; i < head.size(); ++i) {
    if (head[i] == u'\r' && i + 1 < head.size() && head[i + 1] == u'\n') continue;
    const QChar shown = ShownInLines(head[i]);
    word = shown.isSpace() ? 0 : word + 1;
    if (word > kLongestUnbroken && !shown.isLowSurrogate()) {
      lines.append(u'\n');
      word = 1;
      broken = true;
    }
    lines.append(shown);
  }
  if (whole) *whole = !broken && head.size() == text.size();
  return lines;
}

QString WithBreaks(const QString& text) {
  QString broken;
  broken.reserve(text.size());
  int word = 0;
  for (const QChar c : text) {
    if (word >= kLongestWord && !c.isLowSurrogate() && !c.isMark()) {
      broken.append(kZeroWidthSpace);
      word = 0;
    }
    word = c.isSpace() ? 0 : word + 1;
    broken.append(c);
  }
  return broken;
}

QString WithoutMnemonic(const QString& caption) {
  QString plain;
  plain.reserve(caption.size());
  for (qsizetype i = 0; i < caption.size(); ++i) {
    if (caption[i] == u'&' && i + 1 < caption.size()) ++i;
    plain.append(caption[i]);
  }
  return plain;
}

}  // namespace vesko
