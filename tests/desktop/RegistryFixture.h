#pragma once

#include <memory>

#include "platform/Registry.h"
#include "support/TempFolder.h"

namespace vesko {

// What the platform's own file beside this one gives to the tests.

/// The platform's port over two empty hives, whose files (if any) go into the folder. One at a
/// time. In its environment VESKO_A is alpha and VESKO_EMPTY is empty.
std::unique_ptr<Registry> MakeTestRegistry(const TempFolder& folder);

}  // namespace vesko
