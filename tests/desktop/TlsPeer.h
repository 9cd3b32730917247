#pragma once

#include <openssl/types.h>

#include <future>
#include <memory>
#include <string>

#include "desktop/LoopbackPeer.h"

namespace vesko {

/// A certificate with its key. Made for a test, in memory and in seconds.
struct Certificate {
  std::shared_ptr<X509> x509;
  std::shared_ptr<EVP_PKEY> key;
};

/// `valid_days` may be negative: expired yesterday and before. Without an issuer it signs itself.
Certificate MakeCertificate(const std::string& name, int valid_days, const Certificate* issuer);
std::string ToPem(const Certificate& certificate);

/// What the server's side of a TLS connection saw.
struct TlsOutcome {
  std::string server_name;  // as the client asked for it
  std::string received;     // one read's application data
};

/// In a thread: accepts a client, speaks TLS with it up to `highest_version`, greets it, and reads
/// once.
std::future<TlsOutcome> ServeTls(LoopbackPeer& peer, const Certificate& certificate,
                                 int highest_version);

}  // namespace vesko
