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
using SslPtr = std::unique_ptr<SSL, SslDeleter>;

/// The side of a server's certificate check that belongs to one connection.
struct CertificateCheck {
  ServerIdentity server;
  std::vector<CertificateFault> faults;  // found by the handshake; none: accepted
};

/// The settings that all TLS connections share: TLS 1.2 or later; a certificate must lead to one of
/// the system's authorities or to one in a PEM file, be valid today, be meant for servers and name
/// the server.
class TlsContext {
 public:
  /// An empty or unreadable file adds no authorities.
  explicit TlsContext(const std::string& certificate_file);
  ~TlsContext();
  TlsContext(const TlsContext&) = delete;
  TlsContext& operator=(const TlsContext&) = delete;

  /// A client's end of a connection whose handshake has not begun. The check must outlive it.
  SslPtr NewConnection(CertificateCheck& check);

 private:
  SSL_CTX* context_;
};

}  // namespace vesko
