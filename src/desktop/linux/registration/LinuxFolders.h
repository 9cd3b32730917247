#pragma once

#include <string>

namespace vesko {

/// Where the Linux desktop keeps what belongs to the user and to the machine.
struct LinuxFolders {
  std::string user_hive;
  std::string machine_hive;
  std::string user_classes;     // files that announce classes to hosts, see VeskoEx/Host.h
  std::string machine_classes;  // readable for everybody, which the hive is not
};

LinuxFolders DefaultFolders();

}  // namespace vesko
