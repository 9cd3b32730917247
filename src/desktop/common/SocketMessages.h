#pragma once

#include <cstdint>
#include <vector>

#include "base/Text.h"

namespace vesko {

/// What both ports tell a person about a failed connection, in English and in whole sentences. None
/// holds anything that was sent or received.

/// Message for one of the socket error numbers; unknown numbers give a general one.
Text SocketErrorText(int32_t number);

/// Messages for a TLS handshake that came to no end.
inline constexpr TextView kNoTlsMessage = u"The server does not encrypt connections on this port.";
inline constexpr TextView kNoCommonTlsMessage =
    u"The server and this computer found no common way to encrypt the connection.";
inline constexpr TextView kClosedInHandshakeMessage =
    u"The server closed the connection while it was being encrypted.";

/// Why a server's certificate is not accepted.
enum class CertificateFault {
  kExpired,
  kNotYetValid,
  kOtherHost,         // it does not name the server
  kSelfSigned,        // nobody else vouches for it
  kUnknownAuthority,  // nobody trusted vouches for it
  kWithdrawn,
  kWrongPurpose,  // not for servers
  kOther,
};

/// Message for a refused certificate: the host as the user wrote it, then each fault once, in the
/// order given.
Text RefusedCertificateText(TextView host, const std::vector<CertificateFault>& faults);

}  // namespace vesko
