#pragma once

#include <filesystem>
#include <memory>

#include "platform/Shell.h"
#include "support/TempFolder.h"

namespace vesko {

// Defined for each platform in ShellFixture<platform>.cpp.

/// The platform's port, for a user whose folders are in this one.
std::unique_ptr<Shell> MakeTestShell(const TempFolder& folder);

/// The file of the running program.
std::filesystem::path OwnProgram();

}  // namespace vesko
