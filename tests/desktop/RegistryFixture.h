#pragma once

#include <functional>
#include <memory>

#include "support/MemoryRegistry.h"
#include "support/TempFolder.h"

namespace vesko {

// What the platform's own file beside this one gives to the tests.

/// The platform's port over two empty hives, whose files (if any) go into the folder. One at a
/// time. In its environment VESKO_A is alpha and VESKO_EMPTY is empty.
std::unique_ptr<Registry> MakeTestRegistry(const TempFolder& folder);

/// A registry for the tests that each has to pass: how to make an empty one.
struct RegistryPort {
  const char* name;
  std::function<std::unique_ptr<Registry>(const TempFolder&)> make;
  bool quick;  // enough for thousands of calls
};

inline const RegistryPort kRegistryPorts[] = {
    {"Memory", [](const TempFolder&) { return std::make_unique<MemoryRegistry>(); }, true},
    {"Platform", MakeTestRegistry, false},
};

}  // namespace vesko
