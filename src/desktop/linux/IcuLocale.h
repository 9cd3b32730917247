#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/Locale.h"

namespace vesko {

/// Code page that goes with the name of a code set ("EUC-KR", "UTF-8", "ISO-8859-1"): 949, 932,
/// 936, 950 for the legacy ones of Korean, Japanese and Chinese, 125x and the like for single-byte
/// ones, else 65001. Case and punctuation of the name do not matter.
int CodePageOfCodeSet(std::string_view code_set);

/// Code page of the user's locale.
int HostCodePage();

/// A locale on ICU. An empty name is the user's locale. An unknown code page counts as 65001. For
/// one thread: its converters are not shared safely.
std::unique_ptr<Locale> MakeIcuLocale(int code_page, const std::string& locale_name);

}  // namespace vesko
