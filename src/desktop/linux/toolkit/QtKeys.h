#pragma once

#include <QKeyEvent>

namespace vesko {

/// The code of a key as the controls' events report it: Return, space, digits and letters; 0 for
/// every other key.
int KeyCode(const QKeyEvent& event);
/// The modifier bits that are held down, without those of the key pad and the like.
int Modifiers(Qt::KeyboardModifiers modifiers);

}  // namespace vesko
