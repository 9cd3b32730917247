#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/Text.h"
#include "desktop/windows/socket/WinTcpStream.h"

namespace vesko {

struct HostLookup {
  int32_t error;                      // socket error number, or 0
  bool is_address;                    // the host was written as an address
  std::vector<WinAddress> addresses;  // with the port, the best first; none after an error
};

/// The host as the name system and certificates have it: characters beyond 7 bits as A-labels.
std::wstring NetworkName(TextView host);

/// Looks up a name or an address. Blocks, in bad cases for a minute.
HostLookup LookUpHost(const std::wstring& host, int32_t port);

}  // namespace vesko
