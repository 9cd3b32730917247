#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "desktop/TlsCases.h"

namespace vesko {

/// A server that plays the cases one after the other. On Linux it is in this process; for Windows
/// it is a Linux program that runs beside Wine.
class TlsServer {
 public:
  virtual ~TlsServer() = default;

  virtual int32_t Port() const = 0;
  /// A file with the certificate of the test authority.
  virtual std::string Authorities() const = 0;

  /// Waits for the next client.
  virtual void Serve(const TlsCase& tls_case) = 0;
  /// The name that this client asked for and what it said. Waits until the client has gone.
  virtual std::string Seen() = 0;
};

std::unique_ptr<TlsServer> MakeTlsServer();

/// What a server should have seen. A client that gave an address asks for no name.
inline std::string ToBeSeen(const TlsCase& tls_case) {
  if (tls_case.refusal) return "";
  const bool by_name = std::u16string_view(tls_case.host) == u"localhost";
  const bool can_answer = tls_case.ending != TlsEnding::kReset;
  return std::string(by_name ? "localhost" : "") + ": USER anna\r\n" + (can_answer ? "bye" : "");
}

}  // namespace vesko
