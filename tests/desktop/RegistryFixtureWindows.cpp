#include <windows.h>

#include <string>

#include "desktop/RegistryFixture.h"
#include "desktop/windows/WindowsDesktop.h"

namespace vesko {
namespace {

/// Keys of this process that stand for both hives, so that the user's own stay as they are.
class ScratchHives {
 public:
  void Renew() {
    Remove();
    Put(HKEY_CURRENT_USER, "\\machine", HKEY_LOCAL_MACHINE);
    // Last, for the scratch keys themselves are below it.
    Put(HKEY_CURRENT_USER, "\\user", HKEY_CURRENT_USER);
  }

  ~ScratchHives() { Remove(); }

 private:
  void Put(HKEY above, const char* name, HKEY hive) {
    HKEY key = nullptr;
    RegCreateKeyA(above, (path_ + name).c_str(), &key);
    RegOverridePredefKey(hive, key);
    RegCloseKey(key);
  }

  void Remove() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeA(HKEY_CURRENT_USER, path_.c_str());
  }

  const std::string path_ = "Software\\Vesko test " + std::to_string(GetCurrentProcessId());
};

}  // namespace

std::unique_ptr<Registry> MakeTestRegistry(const TempFolder&) {
  static ScratchHives hives;
  hives.Renew();
  SetEnvironmentVariableA("VESKO_A", "alpha");
  SetEnvironmentVariableA("VESKO_EMPTY", "");
  return MakeWinRegistry();
}

}  // namespace vesko
