#pragma once

#include <QString>

#include "base/Text.h"

namespace vesko {

QString ToQString(TextView text);
Text ToText(const QString& text);

/// What one line of a window can show of any text: control characters, line ends and those that
/// turn the writing direction stand as spaces, and what is too long for any screen is left out.
QString OneLine(TextView text);

/// The same over several lines: CR LF, CR and LF end a line, tabs stay. A word that would take the
/// toolkit seconds to lay out is broken, and only the first code units are looked at; `whole` says
/// whether neither was needed.
QString Lines(TextView text, size_t longest, bool* whole = nullptr);

/// Lets words that are too long for a line break: without it one of them widens a window.
QString WithBreaks(const QString& text);

/// The caption as it reads: "&Name" is "Name", "&&" is "&".
QString WithoutMnemonic(const QString& caption);

}  // namespace vesko
