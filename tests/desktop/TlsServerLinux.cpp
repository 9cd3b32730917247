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
    const Certificate* const signers[] = {&authority_, &other_server_, &stranger_, nullptr};
    Certificate shown = MakeCertificate(row, signers[static_cast<size_t>(row.signer)]);
    if (row.signer == Signer::kServer) shown.issuer = other_server_.x509;
    seen_ = ServeTls(peer_, shown, row);
  }

  std::string Seen() override { return seen_.get(); }

 private:
  TempFolder folder_;
  const Certificate authority_ = MakeAuthority("Test Authority");
  const Certificate stranger_ = MakeAuthority("Some Authority");
  const Certificate other_server_ =
      MakeCertificate({.name = "other", .common_name = "other"}, &authority_);
  LoopbackPeer peer_;
  std::future<std::string> seen_;
};

}  // namespace

std::unique_ptr<TlsServer> MakeTlsServer() { return std::make_unique<OwnServer>(); }

}  // namespace vesko
