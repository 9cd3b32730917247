#include "ui/mVeskoMain.h"

namespace vesko {

void CentreForm(Form& form, const Toolkit& toolkit, const Form* owner) {
  const Rect around = owner ? owner->Bounds() : toolkit.Screen();
  form.Move(around.left + (around.width - form.Width()) / 2,
            around.top + (around.height - form.Height()) / 2);
}

}  // namespace vesko
