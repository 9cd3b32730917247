#pragma once

#include <QString>

#include "base/Text.h"

namespace vesko {

/// Both are UTF-16 and take every code unit as it is, lone surrogates included.
QString ToQString(TextView text);
Text ToText(const QString& text);

/// Allows a line break inside words that are too long for a line; otherwise one such word would
/// widen the window.
QString WithBreaks(const QString& text);

/// The caption without its mnemonic: "&Name" is "Name", "&&" is "&".
QString WithoutMnemonic(const QString& caption);

}  // namespace vesko
