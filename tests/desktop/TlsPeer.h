#pragma once

#include <openssl/types.h>

#include <future>
#include <memory>
#include <string>

#include "desktop/LoopbackPeer.h"
#include "desktop/TlsCases.h"

namespace vesko {

/// A certificate with its key. Made for a test, in memory and in seconds.
struct Certificate {
  std::shared_ptr<X509> x509;
  std::shared_ptr<EVP_PKEY> key;
};

/// A certificate of an authority, signed by itself.
Certificate MakeAuthority(const std::string& name);

/// The certificate of a server. Without an issuer it signs itself.
Certificate MakeCertificate(const TlsCase& wanted, const Certificate* issuer);

/// Certificate alone, and key alone.
std::string ToPem(const Certificate& certificate);

/// What the server's side of a TLS connection saw.
struct TlsOutcome {
  std::string server_name;  // as the client asked for it
  std::string received;     // one read's application data
  bool said_good_bye = false;
};

/// In a thread: accepts a client, speaks TLS with it as the case has it, greets it, reads once, and
/// ends the conversation.
std::future<TlsOutcome> ServeTls(LoopbackPeer& peer, const Certificate& certificate,
                                 const TlsCase& tls_case);

}  // namespace vesko
