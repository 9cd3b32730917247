#pragma once

#include <openssl/types.h>

#include <future>
#include <memory>
#include <string>

#include "desktop/LoopbackPeer.h"
#include "desktop/TlsCases.h"

namespace vesko {

/// A certificate with its key, made in memory for one test.
struct Certificate {
  std::shared_ptr<X509> x509;
  std::shared_ptr<EVP_PKEY> key;
  std::shared_ptr<X509> issuer{};  // to be shown with it, where it is no authority
};

/// A certificate of an authority, signed by itself.
Certificate MakeAuthority(const std::string& name);

/// The certificate of a server. Without an issuer it signs itself.
Certificate MakeCertificate(const TlsCase& wanted, const Certificate* issuer);

/// The certificate alone, and its key alone.
std::string ToPem(const Certificate& certificate);
std::string KeyToPem(const Certificate& certificate);

/// The server's side of a TLS connection without a socket: bytes in, bytes out. Greets the client
/// when the handshake is over.
class TlsServerEnd {
 public:
  explicit TlsServerEnd(const Certificate& certificate);

  /// The server's answer to bytes of the client; empty when there is none yet.
  std::string Answer(const std::string& from_client);

 private:
  std::shared_ptr<SSL> ssl_;
  bool greeted_ = false;
};

/// On a thread of its own: accepts a client, speaks TLS with it as the case says, greets it, reads
/// once and ends the conversation. Yields what it saw, as ToBeSeen writes it; nothing where they
/// did not come to talk.
std::future<std::string> ServeTls(LoopbackPeer& peer, const Certificate& certificate,
                                  const TlsCase& tls_case);

}  // namespace vesko
