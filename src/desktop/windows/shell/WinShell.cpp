#include <windows.h>

#include "desktop/windows/WindowsDesktop.h"
// After windows.h, whose types it uses.
#include <shellapi.h>

#include "base/RunTimeError.h"
#include "desktop/windows/shell/OwnModule.h"

namespace vesko {

namespace {

const wchar_t* Wide(const Text& text) { return reinterpret_cast<const wchar_t*>(text.c_str()); }

Text OwnFile() {
  const std::wstring path = OwnModulePath();
  return Text(path.begin(), path.end());
}

/// False for a text with a NUL in it: the system would stop there and find another file.
bool IsPath(const Text& path) { return path.find(u'\0') == Text::npos; }

class WinShell final : public Shell {
 public:
  std::optional<uint32_t> FileAttributes(const Text& path) override {
    if (!IsPath(path)) return std::nullopt;
    const DWORD attributes = GetFileAttributesW(Wide(path));
    if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
    return attributes;
  }

  void Start(const Text& program) override {
    std::wstring command = L"\"" + std::wstring(Wide(program)) + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESHOWWINDOW;
    startup.wShowWindow = SW_SHOWNORMAL;
    PROCESS_INFORMATION process = {};
    if (!IsPath(program) || !CreateProcessW(Wide(program), command.data(), nullptr, nullptr, FALSE,
                                            0, nullptr, nullptr, &startup, &process)) {
      throw RunTimeError(kFileNotFound);
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
  }

  Text OwnFolder() override {
    const Text path = OwnFile();
    return path.substr(0, path.rfind(u'\\'));
  }

  Text OwnName() override {
    Text name = OwnFile();
    name.erase(0, name.rfind(u'\\') + 1);
    return name.substr(0, name.rfind(u'.'));
  }

  char16_t PathSeparator() const override { return u'\\'; }

  // On Windows the registry has both, and config/ reads it there.
  Text DesktopMailClient() override { return {}; }
  std::optional<ForeignAccount> DesktopMailAccount(int32_t) override { return std::nullopt; }
};

}  // namespace

std::unique_ptr<Shell> MakeWinShell() { return std::make_unique<WinShell>(); }

}  // namespace vesko
