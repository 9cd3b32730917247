#pragma once

#include "base/Text.h"
#include "platform/Shell.h"

namespace vesko {

/// The part of a path after its last backslash or, if it has none, after its last slash; empty if
/// that separator ends the path.
Text FileNameOf(TextView path);

/// Whether the path exists and is not a directory. False if its attributes cannot be read, for
/// whatever reason.
bool FileExists(Shell& shell, const Text& path);

}  // namespace vesko
