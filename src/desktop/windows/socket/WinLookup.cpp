#include "desktop/windows/socket/WinLookup.h"

#include <ws2tcpip.h>

#include <cstring>
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

HostLookup LookUp(const std::wstring& host, int32_t port, int flags) {
  ADDRINFOW hints{};
  hints.ai_flags = flags;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_protocol = IPPROTO_TCP;
  ADDRINFOW* found = nullptr;
  const int error = GetAddrInfoW(host.c_str(), std::to_wstring(port).c_str(), &hints, &found);
  if (error != 0) return {LookupError(error), false, {}};
  HostLookup lookup{0, (flags & AI_NUMERICHOST) != 0, {}};
  for (const ADDRINFOW* info = found; info; info = info->ai_next) {
    WinAddress& address = lookup.addresses.emplace_back();
    address.size = static_cast<int>(info->ai_addrlen);
    std::memcpy(&address.storage, info->ai_addr, info->ai_addrlen);
  }
  FreeAddrInfoW(found);
  return lookup;
}

}  // namespace

std::string WinAddress::Bytes() const {
  if (Family() == AF_INET6) {
    const auto& v6 = reinterpret_cast<const sockaddr_in6&>(storage).sin6_addr;
    return {reinterpret_cast<const char*>(&v6), sizeof v6};
  }
  const auto& v4 = reinterpret_cast<const sockaddr_in&>(storage).sin_addr;
  return {reinterpret_cast<const char*>(&v4), sizeof v4};
}

std::wstring NetworkName(TextView host) {
  const auto* wide = reinterpret_cast<const wchar_t*>(host.data());
  wchar_t name[256];
  const int size = IdnToAscii(0, wide, static_cast<int>(host.size()), name, std::size(name));
  if (size > 0) return {name, static_cast<size_t>(size)};
  return {wide, host.size()};
}

HostLookup LookUpHost(const std::wstring& host, int32_t port) {
  // The system would take nothing for this computer, and ignore what stands behind a NUL.
  if (host.empty() || host.find(L'\0') != host.npos) return {kSocketHostNotFound, false, {}};
  const WinsockUse winsock;
  HostLookup address = LookUp(host, port, AI_NUMERICHOST);
  return address.error == 0 ? address : LookUp(host, port, 0);
}

}  // namespace vesko
