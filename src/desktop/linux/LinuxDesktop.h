#pragma once

#include <memory>
#include <string>

#include "component/Desktop.h"

namespace vesko {

/// Where the Linux desktop keeps things. Empty fields mean the user's own.
struct LinuxDesktopOptions {
  std::string user_hive_folder;     // default: the user's XDG configuration folder + "/VeskoEx"
  std::string machine_hive_folder;  // default: /etc/VeskoEx
  std::string locale_name;          // "ko_KR", "en_GB"; default: the user's
  int code_page = 0;                // 0: from the registry, else from the user's locale
  std::string certificate_file;     // PEM file of further certificate authorities for port 995
};

/// The Linux desktop: Qt for widgets, events, sockets and sound, SQLite for the hives, ICU for text
/// and dates. Creates the process's QApplication where the host has none, which lives until the
/// process ends. To be made and used on the user-interface thread. Raises a run-time error with an
/// HRESULT as its number: host::kNoDisplay where no window can be shown, RPC_E_WRONG_THREAD beside
/// the host's user-interface thread.
std::unique_ptr<Desktop> MakeLinuxDesktop(const LinuxDesktopOptions& options = {});

}  // namespace vesko
