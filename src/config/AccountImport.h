#pragma once

#include <cstdint>
#include <optional>

#include "config/HiveValues.h"
#include "platform/Locale.h"
#include "platform/Shell.h"

namespace vesko {

/// The k-th account, counted from 1, of the machine's mail program: by the user's hive, or by the
/// desktop where that has no first account. Nothing where it has no name; numbering ends with the
/// first gap. The server may be empty, and everything comes from another program's settings. A
/// value that cannot be read counts as missing; the failure of `user_values` tells of it.
std::optional<ForeignAccount> ImportAccount(int32_t k, HiveValues& user_values, Shell& shell);

/// The existing program that mailto links start, or empty text: by the machine's hive, or by the
/// desktop where that does not say. Throws nothing.
Text DefaultMailClient(HiveValues& machine_values, const Locale& locale, Shell& shell);

}  // namespace vesko
