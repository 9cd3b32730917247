#pragma once

#include "component/AutomationServer.h"
#include "platform/Automation.h"

namespace vesko {

// What stands behind the four entry points. The library of each desktop defines these.

/// The one server. It is never destroyed: a host may still hold an object when the process ends,
/// and by then what the object would be taken down with is gone.
AutomationServer& TheServer();

/// Writes or removes the keys by which hosts of this user find the library.
HRESULT RegisterLibrary();
HRESULT UnregisterLibrary();

}  // namespace vesko
