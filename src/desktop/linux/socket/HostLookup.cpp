#include "desktop/linux/socket/HostLookup.h"

#include <netdb.h>
#include <netinet/in.h>

#include <QString>
#include <QUrl>
#include <algorithm>
#include <cstring>
#include <memory>

#include "platform/Socket.h"

namespace vesko {
namespace {

int32_t ErrorNumber(int error) {
  switch (error) {
    case 0:
      return 0;
    case EAI_NONAME:
    case EAI_NODATA:
    case EAI_ADDRFAMILY:
    case EAI_FAIL:  // also for text that cannot be a name
      return kSocketHostNotFound;
    default:
      return kSocketTryAgain;
  }
}

HostLookup LookUp(const std::string& host, uint16_t port, int flags) {
  addrinfo hints{};
  hints.ai_flags = flags | AI_NUMERICSERV;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int error = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
  if (error != 0) return {ErrorNumber(error), false, {}};
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, ::freeaddrinfo);
  HostLookup lookup{0, (flags & AI_NUMERICHOST) != 0, {}};
  for (; found; found = found->ai_next) {
    SocketAddress& address = lookup.addresses.emplace_back();
    address.size = found->ai_addrlen;
    std::memcpy(&address.storage, found->ai_addr, found->ai_addrlen);
  }
  return lookup;
}

}  // namespace

std::string SocketAddress::Bytes() const {
  if (Family() == AF_INET6) {
    const auto& v6 = reinterpret_cast<const sockaddr_in6&>(storage).sin6_addr;
    return {reinterpret_cast<const char*>(&v6), sizeof v6};
  }
  const auto& v4 = reinterpret_cast<const sockaddr_in&>(storage).sin_addr;
  return {reinterpret_cast<const char*>(&v4), sizeof v4};
}

std::string NetworkName(const Text& host) {
  const bool ascii = std::all_of(host.begin(), host.end(), [](char16_t c) { return c < 0x80; });
  const QString name = QString::fromStdU16String(host);
  return (ascii ? name.toLatin1() : QUrl::toAce(name)).toStdString();
}

HostLookup LookUpHost(const std::string& host, uint16_t port) {
  // A NUL would hide what stands behind it from the system.
  if (host.empty() || host.find('\0') != host.npos) return {kSocketHostNotFound, false, {}};
  HostLookup address = LookUp(host, port, AI_NUMERICHOST);
  return address.error == 0 ? address : LookUp(host, port, 0);
}

}  // namespace vesko
