#pragma once

#include "ui/Form.h"

namespace vesko {

/// Places the window in the middle of the screen, or over the middle of `owner` when one is given.
/// Every window calls it first when it loads.
void CentreForm(Form& form, const Toolkit& toolkit, const Form* owner = nullptr);

}  // namespace vesko
