#include <windows.h>

#include "component/Hresult.h"
#include "component/LibraryHooks.h"
#include "desktop/windows/WindowsDesktop.h"
#include "desktop/windows/registration/WinRegistration.h"

namespace vesko {
namespace {

/// Letters in any case, in whatever language: in Turkish I is no capital i.
bool Same(LPCWSTR left, LPCWSTR right) {
  return CompareStringOrdinal(left, -1, right, -1, TRUE) == CSTR_EQUAL;
}

/// Whom a registration is for, by the words after regsvr32's /i.
HRESULT RootFor(LPCWSTR words, int32_t& root) {
  if (words == nullptr || *words == L'\0' || Same(words, L"machine")) {
    root = kLocalMachine;
    return S_OK;
  }
  if (!Same(words, L"user")) return E_INVALIDARG;
  root = kCurrentUser;
  return S_OK;
}

}  // namespace

AutomationServer& TheServer() {
  static auto* server = new AutomationServer([] { return MakeWindowsDesktop(); }, LoadTypeInfo);
  return *server;
}

HRESULT RegisterLibrary() { return RegisterOnWindows(*MakeWinRegistry(), kLocalMachine); }

HRESULT UnregisterLibrary() { return UnregisterOnWindows(*MakeWinRegistry(), kLocalMachine); }

}  // namespace vesko

extern "C" HRESULT STDAPICALLTYPE DllInstall(BOOL install, LPCWSTR words) {
  return vesko::Guard([&] {
    int32_t root = 0;
    const HRESULT known = vesko::RootFor(words, root);
    if (FAILED(known)) return known;
    const auto registry = vesko::MakeWinRegistry();
    return install ? vesko::RegisterOnWindows(*registry, root)
                   : vesko::UnregisterOnWindows(*registry, root);
  });
}
