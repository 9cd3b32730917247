#pragma once

#include <cstdint>

#include "base/Text.h"

namespace vesko {

/// What every port says of a failed connection: one sentence for a person.
Text SocketErrorText(int32_t number);

inline constexpr TextView kNoTlsWords = u"The server does not encrypt connections on this port.";
inline constexpr TextView kNoCommonTlsWords =
    u"The server and this computer found no common way to encrypt the connection.";
inline constexpr TextView kClosedInHandshakeWords =
    u"The server closed the connection while it was being encrypted.";

enum class CertificateFault {
  kExpired,
  kNotYetValid,
  kOtherHost,
  kSelfSigned,
  kUnknownAuthority,
  kWithdrawn,
  kWrongPurpose,
  kOther,
};

/// A sentence that follows RefusedCertificateText.
TextView CertificateFaultWords(CertificateFault fault);

Text RefusedCertificateText(TextView host);

}  // namespace vesko
