#pragma once

#include <memory>
#include <string>

#include "platform/Locale.h"

namespace vesko {

/// The locale of the platform that the tests run on, with a code page and a language of their own
/// choice, so that no test depends on who runs it.
std::unique_ptr<Locale> MakeTestLocale(int code_page = kCodePageUtf8,
                                       const std::string& name = "en_GB");

}  // namespace vesko
