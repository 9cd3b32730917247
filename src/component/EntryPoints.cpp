#include "component/Hresult.h"
#include "component/LibraryHooks.h"

extern "C" {

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, void** factory) {
  return vesko::Guard([&] { return vesko::TheServer().GetClassObject(clsid, iid, factory); });
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return vesko::Guard([] { return vesko::TheServer().CanUnload() ? S_OK : S_FALSE; });
}

HRESULT STDAPICALLTYPE DllRegisterServer() {
  return vesko::Guard([] { return vesko::RegisterLibrary(); });
}

HRESULT STDAPICALLTYPE DllUnregisterServer() {
  return vesko::Guard([] { return vesko::UnregisterLibrary(); });
}

}  // extern "C"
