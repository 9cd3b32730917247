#pragma once

#include <memory>

#include "platform/Registry.h"

namespace vesko {

/// The system's registry through its ANSI calls. Transactions do nothing: the system writes each
/// value whole.
std::unique_ptr<Registry> MakeWinRegistry();

}  // namespace vesko
