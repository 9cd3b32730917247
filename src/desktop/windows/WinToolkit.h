#pragma once

#include <memory>

#include "ui/Toolkit.h"

namespace vesko {

/// Native windows from the common controls, on the thread's message pump.
std::unique_ptr<Toolkit> MakeWinToolkit();

}  // namespace vesko
