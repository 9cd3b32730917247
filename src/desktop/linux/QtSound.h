#pragma once

#include <memory>

#include "platform/Sound.h"

namespace vesko {

std::unique_ptr<Sound> MakeQtSound();

}  // namespace vesko
