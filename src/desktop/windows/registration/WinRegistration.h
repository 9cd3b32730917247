#pragma once

#include <cstdint>
#include <string>

#include "platform/Automation.h"
#include "platform/Registry.h"

namespace vesko {

/// Full path of the file that holds this code, the same however it was loaded: links are resolved,
/// letters are as in the file system, without the prefix for long paths.
std::wstring OwnPath();

/// Writes or removes the keys of the class, its interface and its type library, all of which the
/// file OwnPath() holds. `root` is kLocalMachine or kCurrentUser. The rules are those of
/// component/Registration.h. SELFREG_E_CLASS also where the system's code page cannot write the
/// path and the volume has no short name for it.
HRESULT RegisterOnWindows(Registry& registry, int32_t root);
HRESULT UnregisterOnWindows(Registry& registry, int32_t root);

/// The dual interface's description out of the type library in OwnPath(), with a reference for the
/// caller. The HRESULT of the system's loader on failure; `info` is then as it was.
HRESULT LoadTypeInfo(ITypeInfo** info);

}  // namespace vesko
