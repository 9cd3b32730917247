#include <windows.h>
// After windows.h, whose types it uses.
#include <commctrl.h>
#include <objbase.h>

#include <utility>

#include "HostSystem.h"
#include "desktop/windows/WindowsDesktop.h"

namespace vesko {
namespace {

std::function<void()> list_opened;

BOOL CALLBACK FindList(HWND child, LPARAM found) {
  wchar_t name[64] = {};
  GetClassNameW(child, name, 64);
  if (lstrcmpiW(name, WC_LISTVIEWW) == 0) *reinterpret_cast<bool*>(found) = true;
  return TRUE;
}

LRESULT CALLBACK Activating(int code, WPARAM window, LPARAM parameter) {
  bool has_list = false;
  if (code == HCBT_ACTIVATE) {
    EnumChildWindows(reinterpret_cast<HWND>(window), &FindList,
                     reinterpret_cast<LPARAM>(&has_list));
  }
  if (has_list) {
    list_opened();
    PostMessageW(reinterpret_cast<HWND>(window), WM_CLOSE, 0, 0);
  }
  return CallNextHookEx(nullptr, code, window, parameter);
}

double Seconds(const FILETIME& time) {
  return (static_cast<double>(time.dwHighDateTime) * 4294967296.0 + time.dwLowDateTime) / 1e7;
}

class WindowsHostSystem final : public HostSystem {
 public:
  WindowsHostSystem() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }

  std::unique_ptr<Registry> NewRegistry() override { return MakeWinRegistry(); }
  std::unique_ptr<Locale> NewLocale() override { return MakeWinLocale(0); }
  std::unique_ptr<Shell> NewShell() override { return MakeWinShell(); }

  void* Load(const std::string& library, const char* symbol) override {
    const HMODULE loaded = LoadLibraryA(library.c_str());
    return loaded ? reinterpret_cast<void*>(GetProcAddress(loaded, symbol)) : nullptr;
  }

  void CloseLists(std::function<void()> opened) override {
    list_opened = std::move(opened);
    SetWindowsHookExW(WH_CBT, &Activating, nullptr, GetCurrentThreadId());
  }

  double ProcessorSeconds() override {
    FILETIME created, ended, system, user;
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &system, &user);
    return Seconds(system) + Seconds(user);
  }
};

}  // namespace

std::unique_ptr<HostSystem> MakeHostSystem() { return std::make_unique<WindowsHostSystem>(); }

}  // namespace vesko
