#include "desktop/linux/socket/SocketErrors.h"

#include <cerrno>

#include "platform/Socket.h"

namespace vesko {

int32_t SocketErrorNumber(int system_error) {
  switch (system_error) {
    case ECONNREFUSED:
      return kSocketConnectionRefused;
    case ECONNRESET:
    case EPIPE:
      return kSocketConnectionReset;
    case ETIMEDOUT:
      return kSocketTimedOut;
    case EHOSTUNREACH:
      return kSocketHostUnreachable;
    case ENETUNREACH:
      return kSocketNetworkUnreachable;
    case ENETDOWN:
      return kSocketNetworkDown;
    case EADDRINUSE:
      return kSocketAddressInUse;
    case EADDRNOTAVAIL:
      return kSocketAddressNotAvailable;
    case EACCES:
    case EPERM:
      return kSocketPermissionDenied;
    default:
      return kSocketFault;
  }
}

}  // namespace vesko
