#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/Text.h"
#include "desktop/windows/socket/WinTcpStream.h"

namespace vesko {

struct HostLookup {
  int32_t error;  // of a socket; 0: found
  std::vector<WinAddress> addresses;
};

/// The name as it stands in the name system and in certificates, where it may be 7-bit only.
std::wstring NetworkName(TextView host);

/// Looks up a name or an address; blocks. Never both empty-handed and without an error.
HostLookup LookUpHost(const std::wstring& host, int32_t port);

}  // namespace vesko
