#pragma once

#include <string>

#include "desktop/linux/registration/LinuxFolders.h"
#include "platform/Automation.h"
#include "platform/Registry.h"

namespace vesko {

enum class RegistrationScope { kUser, kMachine };

/// Writes or removes the class's keys in a hive, and the file that announces the class to hosts.
/// `library` is the full path. The rules are those of component/Registration.h.
HRESULT RegisterOnLinux(Registry& registry, RegistrationScope scope, const LinuxFolders& folders,
                        const std::string& library);
HRESULT UnregisterOnLinux(Registry& registry, RegistrationScope scope, const LinuxFolders& folders,
                          const std::string& library);

}  // namespace vesko
