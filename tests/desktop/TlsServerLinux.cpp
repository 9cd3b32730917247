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
    Certificate shown = MakeCertificate(row, Issuer(row.signer));
    if (row.signer == Signer::kServer) shown.issuer = other_server_.x509;
    outcome_ = ServeTls(peer_, shown, row);
  }

  std::string Seen() override {
    const TlsOutcome outcome = outcome_.get();
    if (outcome.received.empty()) return "";
    return outcome.server_name + ": " + outcome.received + (outcome.said_good_bye ? "bye" : "");
  }

 private:
  const Certificate* Issuer(Signer signer) const {
    switch (signer) {
      case Signer::kTestAuthority:
        return &authority_;
      case Signer::kServer:
        return &other_server_;
      case Signer::kStranger:
        return &stranger_;
      case Signer::kItself:
        break;
    }
    return nullptr;
  }

  TempFolder folder_;
  const Certificate authority_ = MakeAuthority("Test Authority");
  const Certificate stranger_ = MakeAuthority("Some Authority");
  const Certificate other_server_ =
      MakeCertificate({.name = "other", .common_name = "other"}, &authority_);
  LoopbackPeer peer_;
  std::future<TlsOutcome> outcome_;
};

}  // namespace

std::unique_ptr<TlsServer> MakeTlsServer() { return std::make_unique<OwnServer>(); }

}  // namespace vesko
