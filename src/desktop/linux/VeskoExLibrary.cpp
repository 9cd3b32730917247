#include <dlfcn.h>

#include <filesystem>

#include "component/LibraryHooks.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/registration/LinuxRegistration.h"

namespace vesko {
namespace {

/// Full path of this library, as a registration names it.
std::string OwnPath() {
  Dl_info info = {};
  if (dladdr(reinterpret_cast<const void*>(&TheServer), &info) == 0) return {};
  return std::filesystem::weakly_canonical(info.dli_fname).string();
}

template <typename Step>
HRESULT ChangeRegistration(Step&& step) {
  const LinuxFolders folders = DefaultFolders();
  const auto registry = MakeSqliteRegistry(folders.user_hive, folders.machine_hive);
  return step(*registry, RegistrationScope::kUser, folders, OwnPath());
}

}  // namespace

AutomationServer& TheServer() {
  static auto* server = new AutomationServer([] { return MakeLinuxDesktop(); });
  return *server;
}

HRESULT RegisterLibrary() { return ChangeRegistration(RegisterOnLinux); }

HRESULT UnregisterLibrary() { return ChangeRegistration(UnregisterOnLinux); }

}  // namespace vesko
