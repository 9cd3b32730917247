#pragma once

#include "base/Text.h"
#include "platform/Sound.h"

namespace vesko {

/// Starts to play a wave file in the background and returns at once. A missing or damaged file, an
/// empty path and a machine that cannot play give silence; nothing is thrown or shown.
void PlayNewMailSound(Sound& sound, const Text& path);

}  // namespace vesko
