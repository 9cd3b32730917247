#pragma once

#include "desktop/windows/socket/WinTcpStream.h"
// After the headers of the system, whose types they use.
#define SECURITY_WIN32
#include <security.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "desktop/common/ByteStream.h"
#include "desktop/windows/events/Background.h"
#include "desktop/windows/socket/WinCertificates.h"

namespace vesko {

/// TLS over a TCP stream whose listener this is, by the system's own library. Opened comes when the
/// certificate is checked; nothing is sent before but the handshake. May be destroyed in a listener
/// call.
class WinTlsStream final : public ByteStream, public ByteStreamListener {
 public:
  struct Peer {
    Text host;                     // as the user wrote it
    std::wstring name;             // named to the server, and what its certificate is checked for
    std::string authorities_file;  // further ones, PEM; may be empty
  };

  /// All but the peer must outlive the stream. `background` has nothing else to do meanwhile.
  WinTlsStream(WinTcpStream& tcp, Background& background, Peer peer, ByteStreamListener& listener);
  ~WinTlsStream() override;
  WinTlsStream(const WinTlsStream&) = delete;
  WinTlsStream& operator=(const WinTlsStream&) = delete;

  void Send(std::string_view bytes) override;

 private:
  enum class Phase { kHandshake, kChecking, kOpen, kOver };

  void Opened() override { Handshake(); }
  void BytesArrived(std::string_view bytes) override;
  void PeerClosed() override;
  void Failed(int32_t number, const Text& description) override;

  void Advance();
  void Handshake();
  SECURITY_STATUS NextToken();
  void CheckCertificate();
  void Checked(std::optional<CertificateFault> fault);
  void Decrypt();
  SECURITY_STATUS DecryptRecord(std::string& plain);
  void KeepTail(const SecBuffer& buffer);
  std::string Encrypted(std::string_view bytes);
  void Abort(int32_t number, const Text& description);

  WinTcpStream& tcp_;
  Background& background_;
  const Peer peer_;
  ByteStreamListener& listener_;
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // dies with the stream

  Phase phase_ = Phase::kHandshake;
  bool connected_ = false;  // by TCP
  bool was_open_ = false;   // a later handshake is none of the listener's business
  bool anonymous_ = false;  // the server asked for a certificate of ours; there is none
  CredHandle credentials_{};
  CtxtHandle context_{};
  bool has_credentials_ = false;
  bool has_context_ = false;
  SecPkgContext_StreamSizes sizes_{};
  std::string accepted_;  // the checked certificate as it was sent
  std::string received_;  // not decrypted yet
  std::string waiting_;   // to be sent when a later handshake is over
};

}  // namespace vesko
