#include "desktop/linux/registration/LinuxFolders.h"

#include "VeskoEx/Host.h"

namespace vesko {

LinuxFolders DefaultFolders() {
  return {.user_hive = host::UserConfigFolder() + "/VeskoEx",
          .machine_hive = "/etc/VeskoEx",
          .user_classes = host::UserClassFolder(),
          .machine_classes = host::MachineClassFolder()};
}

}  // namespace vesko
