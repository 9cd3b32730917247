#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/Text.h"

namespace vesko {

/// What a system knows of a host.
///
/// The addresses are opaque here: a port fills them in and reads them again when it connects. After
/// an error there are none.
struct HostLookup {
  int32_t error;                       // socket error number, or 0
  std::vector<std::string> addresses;  // the system's structures with the port, the best first
  std::string literal;                 // the 4 or 16 bytes of a host that is written as an address
};

/// Looks up a name or an address on the thread that calls it. Blocks, in bad cases for
/// a minute, so it is called on a thread of its own. Uses nothing but its arguments, which allows
/// that thread to outlive the socket.
using LookUpFunction = HostLookup (*)(const Text& host, uint16_t port);

}  // namespace vesko
