#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/registration/LinuxFolders.h"
#include "desktop/linux/registration/LinuxRegistration.h"

// Registers the library for the hosts of this user, or with --machine of all users. The library's
// own entry point takes no arguments, so it registers for this user only.

namespace {

namespace fs = std::filesystem;
using vesko::RegistrationScope;

struct Request {
  RegistrationScope scope = RegistrationScope::kUser;
  bool remove = false;
  std::string library;
};

constexpr char kUsage[] =
    "usage: vesko-register [--machine] [--unregister] [library]\n"
    "Registers libVeskoEx.so for the programs of this user, with --machine of all users.\n"
    "Without a library it is the one that was installed with this program.\n";

/// Relative to this program, so that an installation can be moved as a whole.
std::string InstalledLibrary() {
  std::error_code failure;
  const fs::path program = fs::read_symlink("/proc/self/exe", failure);
  return (program.parent_path() / VESKO_LIBRARY_FROM_BIN).string();
}

bool Parse(int count, char** arguments, Request& request) {
  for (int i = 1; i < count; ++i) {
    const std::string argument = arguments[i];
    if (argument == "--machine") {
      request.scope = RegistrationScope::kMachine;
    } else if (argument == "--unregister") {
      request.remove = true;
    } else if (argument.empty() || argument[0] == '-' || !request.library.empty()) {
      return false;
    } else {
      request.library = argument;
    }
  }
  if (request.library.empty()) request.library = InstalledLibrary();
  return true;
}

bool Run(Request& request) {
  const vesko::LinuxFolders folders = vesko::DefaultFolders();
  const auto registry = vesko::MakeSqliteRegistry(folders.user_hive, folders.machine_hive);
  // Weakly, as the library may be deleted before it is unregistered.
  request.library = fs::weakly_canonical(request.library).string();
  const auto step = request.remove ? vesko::UnregisterOnLinux : vesko::RegisterOnLinux;
  return SUCCEEDED(step(*registry, request.scope, folders, request.library));
}

}  // namespace

int main(int count, char** arguments) {
  Request request;
  if (!Parse(count, arguments, request)) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  if (!request.remove && !fs::is_regular_file(request.library)) {
    std::fprintf(stderr, "vesko-register: there is no file %s\n", request.library.c_str());
    return 1;
  }
  umask(022);  // what is written for everybody must be readable for everybody
  if (Run(request)) return 0;
  std::fprintf(stderr, "vesko-register: the %s's registration cannot be changed\n",
               request.scope == RegistrationScope::kMachine ? "machine" : "user");
  return 1;
}
