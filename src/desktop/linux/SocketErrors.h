#pragma once

#include <cstdint>

#include "base/Text.h"

namespace vesko {

/// The socket error number for an errno value; kSocketFault where the scheme has none.
int32_t SocketErrorNumber(int system_error);

/// One sentence for a person.
Text SocketErrorText(int32_t number);

}  // namespace vesko
