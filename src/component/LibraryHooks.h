#pragma once

#include "component/AutomationServer.h"
#include "platform/Automation.h"

namespace vesko {

// What the four entry points call. The library of each desktop defines these functions; they may
// throw, and the entry points turn that into an HRESULT.

/// The one server of this library, made by the first call. It is never destroyed: a host may still
/// hold an object when the process ends, and then the services that the object needs to end are
/// gone.
AutomationServer& TheServer();

/// Writes or removes the keys by which hosts find the library: those of this user on Linux, those
/// of all users on Windows. SELFREG_E_CLASS where that fails.
HRESULT RegisterLibrary();
HRESULT UnregisterLibrary();

}  // namespace vesko
