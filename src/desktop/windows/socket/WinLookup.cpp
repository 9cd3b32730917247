#include "desktop/windows/socket/WinLookup.h"

#include "desktop/windows/socket/WinTcpStream.h"
// After winsock2.h.
#include <ws2tcpip.h>

#include <iterator>

#include "platform/Socket.h"

namespace vesko {
namespace {

int32_t LookupError(int error) {
  switch (error) {
    case WSAHOST_NOT_FOUND:
    case WSANO_DATA:
    case WSANO_RECOVERY:  // what no name can look like
    case WSAEINVAL:
      return kSocketHostNotFound;
    default:
      return kSocketTryAgain;
  }
}

std::string AddressBytes(const sockaddr& address) {
  if (address.sa_family == AF_INET6) {
    const auto& v6 = reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
    return {reinterpret_cast<const char*>(&v6), sizeof v6};
  }
  const auto& v4 = reinterpret_cast<const sockaddr_in&>(address).sin_addr;
  return {reinterpret_cast<const char*>(&v4), sizeof v4};
}

HostLookup LookUp(const std::wstring& host, uint16_t port, int flags) {
  ADDRINFOW hints{};
  hints.ai_flags = flags;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_protocol = IPPROTO_TCP;
  ADDRINFOW* found = nullptr;
  const int error = GetAddrInfoW(host.c_str(), std::to_wstring(port).c_str(), &hints, &found);
  if (error != 0) return {LookupError(error), {}, {}};
  HostLookup lookup{0, {}, {}};
  if (flags & AI_NUMERICHOST) lookup.literal = AddressBytes(*found->ai_addr);
  for (const ADDRINFOW* info = found; info; info = info->ai_next) {
    lookup.addresses.emplace_back(reinterpret_cast<const char*>(info->ai_addr), info->ai_addrlen);
  }
  FreeAddrInfoW(found);
  return lookup;
}

}  // namespace

std::wstring NetworkName(TextView host) {
  const auto* wide = reinterpret_cast<const wchar_t*>(host.data());
  wchar_t name[256];
  const int size = IdnToAscii(0, wide, static_cast<int>(host.size()), name, std::size(name));
  if (size > 0) return {name, static_cast<size_t>(size)};
  return {wide, host.size()};
}

HostLookup LookUpHost(const Text& host, uint16_t port) {
  const std::wstring name = NetworkName(host);
  // The system takes an empty name for this computer, and ignores what stands behind a NUL.
  if (name.empty() || name.find(L'\0') != name.npos) return {kSocketHostNotFound, {}, {}};
  const WinsockUse winsock;
  HostLookup address = LookUp(name, port, AI_NUMERICHOST);
  return address.error == 0 ? address : LookUp(name, port, 0);
}

}  // namespace vesko
