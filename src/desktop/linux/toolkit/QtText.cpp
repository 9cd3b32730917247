#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

constexpr int kLongestWord = 16;
constexpr QChar kZeroWidthSpace(0x200B);

}  // namespace

QString ToQString(TextView text) {
  return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

Text ToText(const QString& text) {
  const auto* units = reinterpret_cast<const char16_t*>(text.utf16());
  return Text(units, static_cast<size_t>(text.size()));
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
