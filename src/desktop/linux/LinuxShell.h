#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Shell.h"

namespace vesko {

/// Where the desktop keeps what the shell looks up. Folders without a separator at their end;
/// lists in order of precedence; what is not absolute is left out.
struct ShellFolders {
  std::string config_home;
  std::string data_home;
  std::vector<std::string> config_dirs;
  std::vector<std::string> data_dirs;
  std::vector<std::string> program_dirs;
  std::vector<std::string> desktops;       // names of the running desktop, as its files carry them
  std::vector<std::string> mail_profiles;  // folders that may hold a profiles.ini
};

/// By the environment, as every program of the desktop finds them.
ShellFolders UserShellFolders();

std::unique_ptr<Shell> MakeLinuxShell(const ShellFolders& folders = UserShellFolders());

}  // namespace vesko
