#pragma once

#include <cstdint>
#include <string>

#include "platform/Automation.h"
#include "platform/Registry.h"

namespace vesko {

inline constexpr char kProgId[] = "VeskoEx.cVeskoEx";

/// "{63A46929-8458-4AA5-8CB6-4BD1B0873CC2}"
std::string GuidText(REFGUID id);

/// Writes the keys by which hosts find the class, under SOFTWARE\Classes of `root`: kCurrentUser
/// for one user, kLocalMachine for all. `library` is the full path of the library in the system's
/// code page. `platform` is "win32" or "win64" where that file holds the type library too, which is
/// then registered with its interface, else empty. A registration of another library is taken over.
/// SELFREG_E_CLASS where the keys cannot be written; then none is left.
HRESULT RegisterServer(Registry& registry, int32_t root, const std::string& library,
                       const std::string& platform = {});

/// Removes those keys, and those above them that are empty then. Keys that name another library
/// stay, and so does what a library of another platform shares with this one. SELFREG_E_CLASS where
/// a key cannot be removed.
HRESULT UnregisterServer(Registry& registry, int32_t root, const std::string& library,
                         const std::string& platform = {});

}  // namespace vesko
