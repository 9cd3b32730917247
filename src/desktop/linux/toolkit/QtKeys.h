#pragma once

#include <QKeyEvent>

namespace vesko {

/// Code and modifier bits of a key as the controls' events report them; 0 for keys without a code.
int KeyCode(const QKeyEvent& event);
int Modifiers(Qt::KeyboardModifiers modifiers);

}  // namespace vesko
