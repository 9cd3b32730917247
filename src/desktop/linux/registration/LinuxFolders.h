#pragma once

#include <string>

namespace vesko {

/// Where the Linux desktop keeps what belongs to the user and to the machine, as full paths without
/// a separator at the end. The folders of classes hold the files that announce classes to hosts
/// (see VeskoEx/Host.h); everybody may read them, while the hives are their owner's alone.
struct LinuxFolders {
  std::string user_hive;
  std::string machine_hive;
  std::string user_classes;
  std::string machine_classes;
};

/// The folders by the environment of this process (XDG base directories). None of them need exist.
LinuxFolders DefaultFolders();

}  // namespace vesko
