#pragma once

#include "base/Text.h"

// Texts that come from servers, senders and files, made fit to be shown. The results hold no
// character that draws nothing, breaks a line unasked or turns the direction of writing.

namespace vesko {

/// One line of a window. Characters that must not be shown, line ends among them, become spaces; a
/// text that is longer than any screen is cut.
Text OneLine(TextView text);

/// Several lines: CR LF, CR and LF each become `line_end`, tabs stay, the other characters that
/// must not be shown become spaces. At most `longest` code units of the text are looked at, and a
/// word so long that a toolkit would take seconds to wrap it is broken; `whole` says whether
/// neither was necessary.
Text Lines(TextView text, size_t longest, TextView line_end, bool* whole = nullptr);

}  // namespace vesko
