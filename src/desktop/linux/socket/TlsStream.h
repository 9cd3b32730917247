#pragma once

#include <memory>
#include <string_view>

#include "desktop/linux/socket/TcpStream.h"
#include "desktop/linux/socket/TlsContext.h"

namespace vesko {

/// TLS over a TCP stream whose listener this is (RFC 8446, RFC 5246). Opened comes when the
/// server's certificate is accepted; until then nothing is sent but the handshake. May be destroyed
/// from within a call of its listener.
class TlsStream final : public StreamListener {
 public:
  /// `host` is the name for messages to a person. Context, TCP stream and listener must outlive
  /// this stream.
  TlsStream(TlsContext& context, TcpStream& tcp, Text host, ServerIdentity server,
            StreamListener& listener);

  /// Tells the peer that nothing more will come, where the handshake was over.
  ~TlsStream();
  TlsStream(const TlsStream&) = delete;
  TlsStream& operator=(const TlsStream&) = delete;

  /// Sends all bytes in order and never blocks. An error is reported later by the event loop.
  /// Precondition: open.
  void Send(std::string_view bytes);

 private:
  enum class Phase { kHandshake, kOpen, kOver };

  void Opened() override;
  void BytesArrived(std::string_view bytes) override;
  void PeerClosed() override;
  void Failed(int32_t number, const Text& description) override;

  void Handshake();
  void HandshakeFailed();
  void Decrypt();
  std::string_view ReadPlain(int& outcome);
  void SendRecords();
  void Abort(int32_t number, const Text& description);

  TcpStream& tcp_;
  const Text host_;
  CertificateCheck check_;
  StreamListener& listener_;
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // expires with the stream
  Phase phase_ = Phase::kHandshake;
  bool heard_ = false;  // something from the server
  SslPtr ssl_;
  BIO* in_ = nullptr;              // owned by ssl_: records that have arrived
  BIO* out_ = nullptr;             // owned by ssl_: records to be sent
  std::unique_ptr<char[]> plain_;  // bytes for one call of the listener
};

}  // namespace vesko
