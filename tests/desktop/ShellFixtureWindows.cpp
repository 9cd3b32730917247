#include <windows.h>

#include "desktop/ShellFixture.h"
#include "desktop/windows/WindowsDesktop.h"

namespace vesko {

std::unique_ptr<Shell> MakeTestShell(const TempFolder&) { return MakeWinShell(); }

std::filesystem::path OwnProgram() {
  wchar_t path[MAX_PATH];
  return std::filesystem::path(path, path + GetModuleFileNameW(nullptr, path, MAX_PATH));
}

}  // namespace vesko
