#include "desktop/linux/QtText.h"

#include <algorithm>

namespace vesko {
namespace {

constexpr size_t kLongestLine = 1000;
constexpr int kLongestWord = 40;
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

QString Lines(TextView text, size_t longest) {
  const TextView head = Head(text, longest);
  QString lines;
  lines.reserve(static_cast<qsizetype>(head.size()));
  for (size_t i = 0; i < head.size(); ++i) {
    const char16_t c = head[i];
    if (c == u'\r' && i + 1 < head.size() && head[i + 1] == u'\n') continue;
    if (c == u'\r' || c == u'\n') {
      lines.append(u'\n');
    } else {
      lines.append(c != u'\t' && IsControl(c) ? QChar(u' ') : QChar(c));
    }
  }
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

QString WithoutMarkup(const QString& text) {
  QString escaped = text;
  return escaped.replace(u'&', QStringLiteral("&&"));
}

}  // namespace vesko
