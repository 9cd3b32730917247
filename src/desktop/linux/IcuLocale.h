#pragma once

#include <memory>
#include <string>

#include "platform/Locale.h"

namespace vesko {

/// Code page of the user's locale: 949, 932, 936, 950 for the legacy code sets of Korean, Japanese
/// and Chinese, 125x and the like for single-byte ones, else 65001.
int HostCodePage();

/// A locale on ICU. An empty name is the user's locale. An unknown code page counts as 65001.
std::unique_ptr<Locale> MakeIcuLocale(int code_page, const std::string& locale_name);

}  // namespace vesko
