#pragma once

#include "base/Variant.h"
#include "component/AutomationServer.h"
#include "platform/Automation.h"

namespace vesko {

/// Creates a cVeskoEx behind its automation interfaces: IUnknown, IDispatch and the dual interface.
/// Raises what creating it raises; E_NOINTERFACE for another interface.
HRESULT CreateAutomationObject(AutomationServer& server, REFIID iid, void** object);

/// The value that a client passed, references followed. Raises run-time error 13 (type mismatch)
/// for kinds that no member takes, and DISP_E_PARAMNOTOPTIONAL for an argument left out.
Variant FromAutomation(const VARIANT& value);

}  // namespace vesko
