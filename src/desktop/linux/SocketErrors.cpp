#include "desktop/linux/SocketErrors.h"

#include <cerrno>

#include "platform/Socket.h"

namespace vesko {
namespace {

struct KnownError {
  int system_error;  // 0: none of its own
  int32_t number;
  TextView words;
};

constexpr KnownError kKnownErrors[] = {
    {ECONNREFUSED, kSocketConnectionRefused,
     u"The server refused the connection. Is the port number right?"},
    {ECONNRESET, kSocketConnectionReset, u"The server broke off the connection."},
    {EPIPE, kSocketConnectionReset, u"The server broke off the connection."},
    {ETIMEDOUT, kSocketTimedOut, u"The server did not answer in time."},
    {EHOSTUNREACH, kSocketHostUnreachable, u"The server cannot be reached."},
    {ENETUNREACH, kSocketNetworkUnreachable, u"The network of the server cannot be reached."},
    {ENETDOWN, kSocketNetworkDown, u"The network is down."},
    {EADDRINUSE, kSocketAddressInUse, u"The local port is in use."},
    {EADDRNOTAVAIL, kSocketAddressNotAvailable, u"The address or the port is not valid."},
    {EACCES, kSocketPermissionDenied, u"The system does not permit the connection."},
    {EPERM, kSocketPermissionDenied, u"The system does not permit the connection."},
    {0, kSocketHostNotFound, u"Host not found."},
    {0, kSocketTryAgain, u"The name of the server could not be looked up. Try again later."},
};

}  // namespace

int32_t SocketErrorNumber(int system_error) {
  for (const KnownError& known : kKnownErrors) {
    if (known.system_error == system_error && system_error != 0) return known.number;
  }
  return kSocketFault;
}

Text SocketErrorText(int32_t number) {
  for (const KnownError& known : kKnownErrors) {
    if (known.number == number) return Text(known.words);
  }
  return u"The connection failed.";
}

}  // namespace vesko
