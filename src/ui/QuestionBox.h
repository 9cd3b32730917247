#pragma once

#include <array>

#include "base/Text.h"
#include "ui/Toolkit.h"

namespace vesko {

/// What QuestionBox returns when the user closes the box without pressing a button.
inline constexpr int kNoButton = -1;

/// A modal box with a message (plain text, CR LF between lines), a title and up to five buttons;
/// empty captions are not shown. Returns the zero-based index of the pressed button, or kNoButton.
/// Escape closes the box; Enter presses the button with the focus, the first one at the beginning.
int QuestionBox(Toolkit& toolkit, const Text& message, const Text& title,
                const std::array<Text, 5>& captions);

}  // namespace vesko
