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

}  // namespace

std::wstring NetworkName(TextView host) {
  const auto* wide = reinterpret_cast<const wchar_t*>(host.data());
  wchar_t name[256];
  const int size = IdnToAscii(0, wide, static_cast<int>(host.size()), name, std::size(name));
  if (size > 0) return {name, static_cast<size_t>(size)};
  return {wide, host.size()};
}

HostLookup LookUpHost(const std::wstring& host, int32_t port) {
  if (host.empty()) return {kSocketHostNotFound, {}};  // the system would take it for this computer
  const WinsockUse winsock;
  ADDRINFOW hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_protocol = IPPROTO_TCP;
  ADDRINFOW* found = nullptr;
  const int error = GetAddrInfoW(host.c_str(), std::to_wstring(port).c_str(), &hints, &found);
  if (error != 0) return {LookupError(error), {}};
  HostLookup lookup{0, {}};
  for (const ADDRINFOW* info = found; info; info = info->ai_next) {
    WinAddress& address = lookup.addresses.emplace_back();
    address.size = static_cast<int>(info->ai_addrlen);
    std::memcpy(&address.storage, info->ai_addr, info->ai_addrlen);
  }
  FreeAddrInfoW(found);
  if (lookup.addresses.empty()) lookup.error = kSocketHostNotFound;
  return lookup;
}

}  // namespace vesko
