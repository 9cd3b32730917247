#pragma once

#include <cstdint>
#include <string>

#include "platform/Automation.h"
#include "platform/Registry.h"

namespace vesko {

/// The name by which hosts ask for the class.
inline constexpr char kProgId[] = "VeskoEx.cVeskoEx";

/// The text of an identity as registries hold it: "{63A46929-8458-4AA5-8CB6-4BD1B0873CC2}".
std::string GuidText(REFGUID id);

/// Writes the keys by which hosts find the class, under SOFTWARE\Classes of `root`: kCurrentUser
/// for one user, kLocalMachine for all. `library` is the full path of the library in the system's
/// code page. `platform` is "win32" or "win64" where that file holds the type library too, which is
/// then registered with its interface, else empty. A registration of another library is replaced.
/// SELFREG_E_CLASS where a key cannot be written; then none of the keys is left.
HRESULT RegisterServer(Registry& registry, int32_t root, const std::string& library,
                       const std::string& platform = {});

/// Removes those keys, and the keys above them that this leaves empty. Where they name another
/// library all of them stay, which is no failure; what a library of another platform shares with
/// this one stays as well. SELFREG_E_CLASS where a key cannot be removed.
HRESULT UnregisterServer(Registry& registry, int32_t root, const std::string& library,
                         const std::string& platform = {});

}  // namespace vesko
