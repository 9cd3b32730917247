#pragma once

#include <cstdint>

namespace vesko {

/// The socket error number for an errno value; kSocketFault where the scheme has none.
int32_t SocketErrorNumber(int system_error);
}  // namespace vesko
