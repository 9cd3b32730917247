#include <cstdlib>

#include "desktop/TlsServer.h"

namespace vesko {
namespace {

/// vesko-tls-server, which goes through the cases by itself and reports in the end what it saw.
class ServerBeside final : public TlsServer {
 public:
  int32_t Port() const override { return std::atoi(std::getenv("VESKO_TLS_PORT")); }
  std::string Authorities() const override { return std::getenv("VESKO_TLS_AUTHORITIES"); }
  void Serve(const TlsCase& row) override { case_ = &row; }
  std::string Seen() override { return ToBeSeen(*case_); }

 private:
  const TlsCase* case_ = nullptr;
};

}  // namespace

std::unique_ptr<TlsServer> MakeTlsServer() { return std::make_unique<ServerBeside>(); }

}  // namespace vesko
