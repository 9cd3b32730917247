#pragma once

#include <sys/socket.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/Text.h"

namespace vesko {

struct SocketAddress {
  sockaddr_storage storage{};
  socklen_t size = 0;

  int Family() const { return storage.ss_family; }
  const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }

  /// The 4 or 16 bytes of the address alone, in network order.
  std::string Bytes() const;
};

struct HostLookup {
  int32_t error;                         // socket error number, or 0
  bool is_address;                       // the host was written as an address
  std::vector<SocketAddress> addresses;  // with the port, the best first; none after an error
};

/// The host as the name system and certificates have it: characters beyond 7 bits as A-labels.
/// Empty where it can be no name.
std::string NetworkName(const Text& host);

/// Looks up a name or an address. Blocks, in bad cases for a minute.
HostLookup LookUpHost(const std::string& host, uint16_t port);

}  // namespace vesko
