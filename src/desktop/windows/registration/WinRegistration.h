#pragma once

#include <cstdint>
#include <string>

#include "platform/Automation.h"
#include "platform/Registry.h"

namespace vesko {

/// Full path of the file that holds this code, the same however it was loaded.
std::wstring OwnPath();

/// Writes or removes the keys of the class, its interface and its type library, which OwnPath()
/// holds, under kLocalMachine or kCurrentUser. The rules are those of component/Registration.h.
/// SELFREG_E_CLASS too where the path cannot be written in the system's code page.
HRESULT RegisterOnWindows(Registry& registry, int32_t root);
HRESULT UnregisterOnWindows(Registry& registry, int32_t root);

/// The dual interface's description out of the type library of OwnPath().
HRESULT LoadTypeInfo(ITypeInfo** info);

}  // namespace vesko
