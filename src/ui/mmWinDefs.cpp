#include "ui/mmWinDefs.h"

#include <chrono>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

void ApplyTo(Control& control, Form& form, Toolkit& toolkit, const Text& font_name) {
  control.SetFont({font_name, control.GetFont().size});
  toolkit.Invalidate(form, control);
  toolkit.GetPump().RunPending(std::chrono::milliseconds(0));
  control.Refresh();
}

}  // namespace

void ApplyFont(Form& form, Toolkit& toolkit, const Text& font_name) {
  if (font_name.empty()) return;
  for (Control* control : form.Controls()) {
    if (control->GetFont().size <= 0) continue;
    IgnoreErrors([&] { ApplyTo(*control, form, toolkit, font_name); });
  }
}

}  // namespace vesko
