#include "desktop/linux/toolkit/QtKeys.h"

#include "ui/Controls.h"

namespace vesko {

int KeyCode(const QKeyEvent& event) {
  const int key = event.key();
  if (key == Qt::Key_Return || key == Qt::Key_Enter) return kKeyReturn;
  const bool has_code = key == Qt::Key_Space || (key >= Qt::Key_0 && key <= Qt::Key_9) ||
                        (key >= Qt::Key_A && key <= Qt::Key_Z);
  return has_code ? key : 0;
}

int Modifiers(Qt::KeyboardModifiers modifiers) {
  return (modifiers & Qt::ShiftModifier ? kShift : 0) |
         (modifiers & Qt::ControlModifier ? kControl : 0) |
         (modifiers & Qt::AltModifier ? kAlt : 0);
}

}  // namespace vesko
