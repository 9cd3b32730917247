#pragma once

#include <cstdint>
#include <optional>

#include "config/cRegistry.h"
#include "platform/Locale.h"
#include "platform/Registry.h"
#include "platform/Shell.h"

namespace vesko {

/// The k-th account, counted from 1, of the machine's mail program: by the registry, or by the
/// desktop where the registry has no first account. Nothing where it has no name; numbering ends
/// with the first gap. The server may be empty.
std::optional<ForeignAccount> ImportAccount(int32_t k, cRegistry& registry, Shell& shell);

/// The existing program that mailto links start, or empty text: by the registry, or by the desktop
/// where the registry does not say.
Text DefaultMailClient(cRegistry& registry, const Locale& locale, Shell& shell);

}  // namespace vesko
