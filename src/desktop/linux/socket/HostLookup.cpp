#include "desktop/linux/socket/HostLookup.h"

#include <netdb.h>
#include <netinet/in.h>

#include <QString>
#include <QUrl>
#include <algorithm>
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

std::string AddressBytes(const sockaddr& address) {
  if (address.sa_family == AF_INET6) {
    const in6_addr& v6 = reinterpret_cast<const sockaddr_in6&>(address).sin6_addr;
    return {reinterpret_cast<const char*>(&v6), sizeof v6};
  }
  const in_addr& v4 = reinterpret_cast<const sockaddr_in&>(address).sin_addr;
  return {reinterpret_cast<const char*>(&v4), sizeof v4};
}

HostLookup LookUp(const std::string& host, uint16_t port, int flags) {
  addrinfo hints{};
  hints.ai_flags = flags | AI_NUMERICSERV;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const int error = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
  if (error != 0) return {ErrorNumber(error), {}, {}};
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner(found, ::freeaddrinfo);
  HostLookup lookup{0, {}, {}};
  if (flags & AI_NUMERICHOST) lookup.literal = AddressBytes(*found->ai_addr);
  for (; found; found = found->ai_next) {
    lookup.addresses.emplace_back(reinterpret_cast<const char*>(found->ai_addr), found->ai_addrlen);
  }
  return lookup;
}

}  // namespace

std::string NetworkName(const Text& host) {
  const bool ascii = std::all_of(host.begin(), host.end(), [](char16_t c) { return c < 0x80; });
  const QString name = QString::fromStdU16String(host);
  return (ascii ? name.toLatin1() : QUrl::toAce(name)).toStdString();
}

HostLookup LookUpHost(const Text& host, uint16_t port) {
  const std::string name = NetworkName(host);
  // A NUL would hide what stands behind it from the system.
  if (name.empty() || name.find('\0') != name.npos) return {kSocketHostNotFound, {}, {}};
  HostLookup address = LookUp(name, port, AI_NUMERICHOST);
  return address.error == 0 ? address : LookUp(name, port, 0);
}

}  // namespace vesko
