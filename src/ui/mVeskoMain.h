#pragma once

#include "ui/Form.h"

namespace vesko {

/// Places the window in the middle of the screen, or over the middle of `owner` when one is given.
/// Every window calls it first when it loads. Its size stays; it may end up off the screen where it
/// is larger than what it is placed over.
void CentreForm(Form& form, const Toolkit& toolkit, const Form* owner = nullptr);

}  // namespace vesko
