#pragma once

#include <filesystem>
#include <memory>

#include "platform/Shell.h"
#include "support/TempFolder.h"

namespace vesko {

// What the platform's own file beside this one gives to the tests.

/// The platform's port, for a user whose folders lie in this one.
std::unique_ptr<Shell> MakeTestShell(const TempFolder& folder);

/// The file of the running program.
std::filesystem::path OwnProgram();

}  // namespace vesko
