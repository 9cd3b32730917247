#pragma once

#include <string>

namespace vesko {

/// Absolute path of the program that the desktop starts for mailto links: the user's default, or
/// else the first of the others whose program exists and can be executed. Empty where there is none.
/// The arguments of the desktop's command are lost, so a command that only dresses or sandboxes a
/// program ("env", "flatpak") gives the program within, where that has a file of its own.
///
/// The desktop's folders are those of the environment when the first caller asks.
std::string MailtoProgram();

}  // namespace vesko
