#pragma once

#include "base/Text.h"
#include "ui/Toolkit.h"

namespace vesko {

/// Asks for one line of text in a modal box with a prompt (CR LF between lines), OK and Cancel.
/// Returns the text, empty text when the user cancels or closes the box.
Text InputBox(Toolkit& toolkit, const Text& prompt, const Text& title, const Text& initial = {});

}  // namespace vesko
