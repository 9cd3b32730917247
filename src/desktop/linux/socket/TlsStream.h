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
  /// kOver: the listener has been told of the end, and whatever still arrives is dropped.
  enum class Phase { kHandshake, kOpen, kOver };

  // The TCP stream's events.
  void Opened() override;
  void BytesArrived(std::string_view bytes) override;
  void PeerClosed() override;
  void Failed(int32_t number, const Text& description) override;

  /// Goes on with the handshake as far as what has arrived allows.
  void Handshake();
  void HandshakeFailed();
  /// Hands what has arrived to the listener, which may destroy this stream meanwhile.
  void Decrypt();
  std::string_view ReadPlain(int& outcome);
  /// Sends what the library wants to be sent.
  void SendRecords();
  /// Closes the TCP stream and tells the listener why. Does nothing after the first time.
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
