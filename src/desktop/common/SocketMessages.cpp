#include "desktop/common/SocketMessages.h"

#include "platform/Socket.h"

namespace vesko {
namespace {

TextView FaultMessage(CertificateFault fault) {
  switch (fault) {
    case CertificateFault::kExpired:
      return u"It has expired.";
    case CertificateFault::kNotYetValid:
      return u"It is not valid yet.";
    case CertificateFault::kOtherHost:
      return u"It belongs to a server of another name.";
    case CertificateFault::kSelfSigned:
      return u"It is signed by nobody but the server itself.";
    case CertificateFault::kUnknownAuthority:
      return u"It is signed by an authority that is not known here.";
    case CertificateFault::kWithdrawn:
      return u"It has been withdrawn.";
    case CertificateFault::kWrongPurpose:
      return u"It is not meant for a server.";
    case CertificateFault::kOther:
      break;
  }
  return u"It cannot be verified.";
}

}  // namespace

Text SocketErrorText(int32_t number) {
  switch (number) {
    case kSocketConnectionRefused:
      return u"The server refused the connection. Is the port number right?";
    case kSocketConnectionReset:
      return u"The server broke off the connection.";
    case kSocketNoMemory:
      return u"There is not enough memory for what the server sends.";
    case kSocketTimedOut:
      return u"The server did not answer in time.";
    case kSocketHostUnreachable:
      return u"The server cannot be reached.";
    case kSocketNetworkUnreachable:
      return u"The network of the server cannot be reached.";
    case kSocketNetworkDown:
      return u"The network is down.";
    case kSocketAddressInUse:
      return u"The local port is in use.";
    case kSocketAddressNotAvailable:
      return u"The address or the port is not valid.";
    case kSocketPermissionDenied:
      return u"The system does not permit the connection.";
    case kSocketHostNotFound:
      return u"Host not found.";
    case kSocketTryAgain:
      return u"The name of the server could not be looked up. Try again later.";
    default:
      return u"The connection failed.";
  }
}

Text RefusedCertificateText(TextView host, const std::vector<CertificateFault>& faults) {
  Text message = Text(u"The certificate of '").append(host).append(u"' is not accepted.");
  for (const CertificateFault fault : faults) {
    const TextView reason = FaultMessage(fault);
    if (!Contains(message, reason)) message.append(u" ").append(reason);
  }
  return message;
}

}  // namespace vesko
