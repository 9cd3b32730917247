#pragma once

#include "base/Text.h"
#include "platform/Shell.h"

namespace vesko {

/// What stands behind the last backslash of a path, or, where it has none, behind the last slash;
/// empty behind a separator at the end.
Text FileNameOf(TextView path);

/// True for what exists and is no directory; false where the attributes cannot be read, for
/// whatever reason.
bool FileExists(Shell& shell, const Text& path);

}  // namespace vesko
