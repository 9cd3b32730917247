#pragma once

#include "ui/Form.h"

namespace vesko {

/// Gives every control that has a font (size above 0) the face `font_name` and repaints it; sizes
/// stay. Does nothing when the name is empty. Runs pending events after each control, so the window
/// may have been unloaded when it returns. A control that fails is skipped. Every window calls it
/// last when it loads.
void ApplyFont(Form& form, Toolkit& toolkit, const Text& font_name);

}  // namespace vesko
