#pragma once

#include <string>

#include "desktop/linux/registration/LinuxFolders.h"
#include "platform/Automation.h"
#include "platform/Registry.h"

namespace vesko {

/// For whom a class is registered: for one user, or for every user of the machine.
enum class RegistrationScope { kUser, kMachine };

/// Writes or removes the class's keys in a hive, and the file that announces the class to hosts.
/// `library` is the library's full path; a relative one, or one with a line break, cannot be
/// announced. Otherwise the rules are those of component/Registration.h: a failure is
/// SELFREG_E_CLASS, and one that happens while registering leaves neither keys nor file.
///
/// The file is replaced in one step, so a host that reads it meanwhile finds the old or the new
/// one. It and the folders made for it are writable for their owner only, whatever the umask says.
HRESULT RegisterOnLinux(Registry& registry, RegistrationScope scope, const LinuxFolders& folders,
                        const std::string& library);
HRESULT UnregisterOnLinux(Registry& registry, RegistrationScope scope, const LinuxFolders& folders,
                          const std::string& library);

}  // namespace vesko
