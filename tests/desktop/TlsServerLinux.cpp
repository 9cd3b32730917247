#include "desktop/TlsPeer.h"
#include "desktop/TlsServer.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

class OwnServer final : public TlsServer {
 public:
  OwnServer() { folder_.Write("authorities", ToPem(authority_)); }

  int32_t Port() const override { return peer_.Port(); }
  std::string Authorities() const override { return folder_ / "authorities"; }

  void Serve(const TlsCase& row) override {
    const Certificate stranger = MakeAuthority("Some Authority");
    const Certificate* issuer = row.signer == Signer::kTestAuthority ? &authority_
                                : row.signer == Signer::kStranger    ? &stranger
                                                                     : nullptr;
    outcome_ = ServeTls(peer_, MakeCertificate(row, issuer), row);
  }

  std::string Seen() override {
    const TlsOutcome outcome = outcome_.get();
    if (outcome.received.empty()) return "";
    return outcome.server_name + ": " + outcome.received + (outcome.said_good_bye ? "bye" : "");
  }

 private:
  TempFolder folder_;
  const Certificate authority_ = MakeAuthority("Test Authority");
  LoopbackPeer peer_;
  std::future<TlsOutcome> outcome_;
};

}  // namespace

std::unique_ptr<TlsServer> MakeTlsServer() { return std::make_unique<OwnServer>(); }

}  // namespace vesko
