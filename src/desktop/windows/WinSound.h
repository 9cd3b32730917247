#pragma once

#include <memory>

#include "platform/Locale.h"
#include "platform/Sound.h"

namespace vesko {

/// Wave output by winmm. The locale must outlive the sound: paths go out in its code page.
std::unique_ptr<Sound> MakeWinSound(const Locale& locale);

}  // namespace vesko
