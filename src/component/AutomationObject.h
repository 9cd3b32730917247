#pragma once

#include "base/Variant.h"
#include "component/AutomationServer.h"
#include "platform/Automation.h"

namespace vesko {

/// Creates a cVeskoEx behind its automation interfaces, IUnknown, IDispatch and the dual interface,
/// and stores the one asked for, with a reference for the caller. E_NOINTERFACE for another one,
/// before anything is created. Throws what AutomationServer::ShareState and the constructor of
/// cVeskoEx throw; `object` is then as it was.
///
/// The object's methods throw nothing: each returns the HRESULT of what went wrong (Hresult.h). It
/// stays alive while one of its methods runs, even when the client lets go of it meanwhile.
HRESULT CreateAutomationObject(AutomationServer& server, REFIID iid, void** object);

/// The value that a client passed, copied, with references followed. Nothing of it is trusted: a
/// null reference, or one that leads to another reference of its kind, throws RunTimeError
/// kTypeMismatch, as do the kinds that no member takes. An argument left out throws RunTimeError
/// DISP_E_PARAMNOTOPTIONAL.
Variant FromAutomation(const VARIANT& value);

}  // namespace vesko
