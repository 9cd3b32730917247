#pragma once

#include <memory>
#include <string>

#include "platform/Locale.h"

namespace vesko {

/// A locale on the system's own string, code page and date services. 0 is the system's ANSI code
/// page, as is one that the system lacks. The name is a language's ("en-GB"); an empty one is the
/// user's, as is one that the system does not know.
std::unique_ptr<Locale> MakeWinLocale(int code_page, const std::wstring& name = {});

}  // namespace vesko
