#include "desktop/linux/registration/LinuxRegistration.h"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "VeskoEx/Host.h"
#include "VeskoEx/VeskoEx.h"
#include "component/Registration.h"

namespace vesko {
namespace {

namespace fs = std::filesystem;

int32_t RootOf(RegistrationScope scope) {
  return scope == RegistrationScope::kMachine ? kLocalMachine : kCurrentUser;
}

std::string ClassFolder(RegistrationScope scope, const LinuxFolders& folders) {
  return scope == RegistrationScope::kMachine ? folders.machine_classes : folders.user_classes;
}

/// Makes the folders that are missing, writable for their owner only whatever the umask says: hosts
/// ignore a class file in a folder that others can write to.
void MakeFolders(const fs::path& folder) {
  if (folder.has_relative_path()) MakeFolders(folder.parent_path());
  mkdir(folder.c_str(), 0755);
}

/// Replaces the file in one step, since a host may be reading it.
bool WriteClassFile(const std::string& folder, const std::string& library) {
  std::error_code failure;
  MakeFolders(folder);
  const std::string path = host::ClassFile(folder, kProgId);
  const std::string fresh = path + ".new";
  std::ofstream file(fresh, std::ios::trunc);
  file << "CLSID=" << GuidText(CLSID_cVeskoEx) << "\nInprocServer32=" << library
       << "\nThreadingModel=Apartment\n";
  file.close();
  if (!file || chmod(fresh.c_str(), 0644) != 0) return false;
  fs::rename(fresh, path, failure);
  return !failure;
}

bool RemoveClassFile(const std::string& folder, const std::string& library) {
  const std::string path = host::ClassFile(folder, kProgId);
  const auto entry = host::ReadClassFile(path);
  if (entry && entry->library != library) return true;
  std::error_code failure;
  fs::remove(path, failure);
  // Folders that are empty now are removed too.
  std::error_code not_empty;
  fs::remove(folder, not_empty);
  fs::remove(fs::path(folder).parent_path(), not_empty);
  return !failure;
}

}  // namespace

HRESULT RegisterOnLinux(Registry& registry, RegistrationScope scope, const LinuxFolders& folders,
                        const std::string& library) {
  // Hosts accept full paths only, and the class file holds one line for a path.
  if (!library.starts_with('/') || library.find('\n') != std::string::npos) return SELFREG_E_CLASS;
  const HRESULT outcome = RegisterServer(registry, RootOf(scope), library);
  if (FAILED(outcome)) return outcome;
  if (WriteClassFile(ClassFolder(scope, folders), library)) return S_OK;
  UnregisterServer(registry, RootOf(scope), library);
  return SELFREG_E_CLASS;
}

HRESULT UnregisterOnLinux(Registry& registry, RegistrationScope scope, const LinuxFolders& folders,
                          const std::string& library) {
  const bool removed = RemoveClassFile(ClassFolder(scope, folders), library);
  const HRESULT outcome = UnregisterServer(registry, RootOf(scope), library);
  return removed ? outcome : SELFREG_E_CLASS;
}

}  // namespace vesko
