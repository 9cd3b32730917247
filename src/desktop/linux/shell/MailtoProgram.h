#pragma once

#include <string>

struct _GAppInfo;  // GIO's; its own header and Qt's macros do not go together

namespace vesko {

/// Absolute path of the program that the desktop starts for mailto links: the user's default, or
/// else the first of the others whose program exists and can be executed. Empty where there is
/// none. The arguments of the desktop's command are dropped, so for a command that only wraps a
/// program ("env", "flatpak") it is the wrapped program, where that has a file of its own.
///
/// The desktop's folders are those of the environment when the first caller asks.
std::string MailtoProgram();

/// The same for one application. Its entry may be a stranger's. Not null, not taken over.
std::string ProgramOf(_GAppInfo* application);

}  // namespace vesko
