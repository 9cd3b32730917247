#pragma once

#include "desktop/windows/socket/WinTcpStream.h"
// After the headers of the system, whose types they use.
#define SECURITY_WIN32
#include <security.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "desktop/common/Background.h"
#include "desktop/common/ServerIdentity.h"
#include "desktop/common/StreamListener.h"
#include "desktop/windows/socket/WinCertificates.h"

namespace vesko {

/// TLS by the system's library over a TCP stream whose listener this is. Opened comes when the
/// server's certificate is accepted; until then nothing is sent but the handshake. May be destroyed
/// from within a call of its listener.
class WinTlsStream final : public StreamListener {
 public:
  /// The server to be met.
  struct Peer {
    Text host;  // as the user wrote it, for messages
    ServerIdentity server;
    std::string authorities_file;  // authorities besides the system's, PEM; may be empty
  };

  /// TCP stream, background and listener must outlive this stream, which alone may use `background`
  /// while it lives.
  WinTlsStream(WinTcpStream& tcp, Background& background, Peer peer, StreamListener& listener);

  /// Tells the peer that nothing more will come, where the handshake was over.
  ~WinTlsStream();
  WinTlsStream(const WinTlsStream&) = delete;
  WinTlsStream& operator=(const WinTlsStream&) = delete;

  /// Sends all bytes in order and never blocks; waits for the end of a later handshake. An error is
  /// reported later by the event loop. Precondition: open.
  void Send(std::string_view bytes);

 private:
  /// kChecking: the certificate is being judged in the background. kOver: the listener has been
  /// told of the end, and whatever still arrives is dropped.
  enum class Phase { kHandshake, kChecking, kOpen, kOver };

  // The TCP stream's events.
  void Opened() override { Handshake(); }
  void BytesArrived(std::string_view bytes) override;
  void PeerClosed() override;
  void Failed(int32_t number, const Text& description) override;

  /// Goes on with what the phase asks for, as far as what has arrived allows.
  void Advance();
  void Handshake();
  /// One step of the handshake: what the system's library answers to the bytes that have arrived.
  SECURITY_STATUS NextToken();
  SECURITY_STATUS SendToken(SecBufferDesc* input);
  /// Judges the server's certificate in the background, since that may ask servers on the network.
  void CheckCertificate();
  void Checked(const std::vector<CertificateFault>& faults);
  /// Sends close_notify.
  void SayGoodBye();
  void Decrypt();
  SECURITY_STATUS DecryptRecord(std::string& plain);
  /// Keeps the bytes behind the record that was used up.
  void KeepTail(const SecBuffer& buffer);
  std::string Encrypted(std::string_view bytes);
  /// Closes the TCP stream and tells the listener why. Does nothing after the first time.
  void Abort(int32_t number, const Text& description);

  WinTcpStream& tcp_;
  Background& background_;
  const Peer peer_;
  StreamListener& listener_;
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // expires with the stream

  Phase phase_ = Phase::kHandshake;
  bool was_open_ = false;   // the listener is not told of later handshakes
  bool anonymous_ = false;  // the server asked for a certificate of ours; there is none
  CredHandle credentials_{};
  CtxtHandle context_{};
  bool has_credentials_ = false;
  bool has_context_ = false;
  SecPkgContext_StreamSizes sizes_{};
  std::string accepted_;  // the accepted certificate, in DER
  std::string received_;  // not decrypted yet
  std::string waiting_;   // to be sent when a later handshake is over
};

}  // namespace vesko
