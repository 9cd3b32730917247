#pragma once

#include "base/Text.h"
#include "ui/Toolkit.h"

namespace vesko {

/// Asks for one line of text in a modal box with a prompt (CR LF between lines), OK and Cancel. The
/// box opens over the window that is shown modally, with `initial` in it and selected. Returns the
/// text without line ends and control characters; empty text when the user cancels or closes the
/// box. The caller's own window may be gone by then.
Text InputBox(Toolkit& toolkit, const Text& prompt, const Text& title, const Text& initial = {});

}  // namespace vesko
