#pragma once

#include "base/Text.h"
#include "platform/Sound.h"

namespace vesko {

/// Plays a wave file in the background where the machine can play at all; silence otherwise.
void PlayNewMailSound(Sound& sound, const Text& path);

}  // namespace vesko
