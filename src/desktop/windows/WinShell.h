#pragma once

#include <memory>

#include "platform/Shell.h"

namespace vesko {

std::unique_ptr<Shell> MakeWinShell();

}  // namespace vesko
