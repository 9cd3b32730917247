#pragma once

#include <openssl/types.h>

#include <memory>
#include <string>
#include <vector>

#include "desktop/common/ServerIdentity.h"
#include "desktop/common/SocketMessages.h"

namespace vesko {

struct SslDeleter {
  void operator()(SSL* ssl) const;
};
/// A connection of the TLS library.
using SslPtr = std::unique_ptr<SSL, SslDeleter>;

/// What the check of a server's certificate needs to know of one connection, and what it finds.
struct CertificateCheck {
  ServerIdentity server;
  std::vector<CertificateFault> faults;  // filled by the handshake; empty: accepted
};

/// What all TLS connections have in common: TLS 1.2 or later, and the authorities to whom a
/// server's certificate must lead. The certificate must also be valid today, be meant for servers
/// and name the server.
class TlsContext {
 public:
  /// The authorities are the system's and those in a PEM file. A file that cannot be read adds
  /// none, and neither does an empty name. Throws std::bad_alloc.
  explicit TlsContext(const std::string& certificate_file);
  ~TlsContext();
  TlsContext(const TlsContext&) = delete;
  TlsContext& operator=(const TlsContext&) = delete;

  /// The client's end of a connection whose handshake has not begun, with BIOs in memory; it asks
  /// for the server by name. Its handshake fails, and tells the server why, when the check finds a
  /// fault. The check must outlive it. Throws std::bad_alloc.
  SslPtr NewConnection(CertificateCheck& check);

 private:
  SSL_CTX* context_;
};

}  // namespace vesko
