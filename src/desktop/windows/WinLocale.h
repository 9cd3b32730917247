#pragma once

#include <memory>

#include "platform/Locale.h"

namespace vesko {

/// A locale on the system's own string, code page and date services. 0 is the system's ANSI code
/// page.
std::unique_ptr<Locale> MakeWinLocale(int code_page);

}  // namespace vesko
