#pragma once

#include <string>

#include "desktop/linux/LinuxDesktop.h"

namespace vesko {

/// Absolute path of the program that the desktop starts for mailto links: the first of those that
/// the user, the machine and the installed programs name whose program exists and can be executed.
/// Empty where there is none. The files read may hold anything.
std::string MailtoProgram(const ShellFolders& folders);

/// True for a regular file that this user may execute.
bool IsProgram(const std::string& path);

}  // namespace vesko
