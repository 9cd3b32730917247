#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/common/StreamListener.h"
#include "platform/Locale.h"
#include "platform/Socket.h"

namespace vesko {

/// What an operating system contributes to a socket: looking up names, and one stream of bytes at a
/// time. Everything is reported by the event loop, never from within a call of these.
class Streams {
 public:
  virtual ~Streams() = default;

  /// Looks `host` up without blocking and keeps the addresses for Open. Then calls `done` with 0 or
  /// a socket error number, unless Close comes first.
  virtual void LookUp(const Text& host, uint16_t port, std::function<void(int32_t error)> done) = 0;

  /// Calls `call` soon, unless Close comes first.
  virtual void Later(std::function<void()> call) = 0;

  /// Connects to the addresses found by LookUp; to be called once, from within its `done`, where a
  /// failure may be reported at once. With `tls` the stream opens when the handshake is over and
  /// the server's certificate has been accepted. `local_port` 0 is any. The listener must live
  /// until Close.
  virtual void Open(uint16_t local_port, bool tls, StreamListener& listener) = 0;

  /// Sends all bytes in order and never blocks: bytes that the peer does not take yet are kept.
  /// Precondition: the stream is open.
  virtual void Send(std::string_view bytes) = 0;

  /// Cancels the look-up and drops the connection with all bytes that wait; with TLS the peer is
  /// told first. Returns at once in any state, and nothing is reported afterwards.
  virtual void Close() = 0;
};

/// Socket over an operating system's streams: the states, the checks of arguments, and the
/// conversion between bytes and text. A connection to one of the TLS ports is TLS from its first
/// byte. Must not be destroyed from within one of its events.
class StreamSocket final : public Socket, private StreamListener {
 public:
  /// The locale must outlive the socket.
  StreamSocket(const Locale& locale, std::vector<int32_t> tls_ports,
               std::unique_ptr<Streams> streams);
  ~StreamSocket() override;
  StreamSocket(const StreamSocket&) = delete;
  StreamSocket& operator=(const StreamSocket&) = delete;

  SocketState State() const override { return state_; }
  void SetLocalPort(int32_t port) override { local_port_ = port; }
  void Connect(const Text& host, int32_t port) override;
  void SendData(TextView text) override;
  Text GetData() override;
  uint64_t BytesReceived() const override { return bytes_received_; }
  void Close() override;

 private:
  void LookedUp(int32_t error);
  bool IsTlsPort() const;
  void FailWith(int32_t number);

  void Opened() override;
  void BytesArrived(std::string_view bytes) override;
  void PeerClosed() override;
  void Failed(int32_t number, const Text& description) override;

  const Locale& locale_;
  const std::unique_ptr<TextDecoder> decoder_;
  const std::vector<int32_t> tls_ports_;
  const std::unique_ptr<Streams> streams_;

  SocketState state_ = SocketState::kClosed;
  int32_t port_ = 0;
  int32_t local_port_ = 0;
  Text text_;  // arrived and not taken yet
  uint64_t bytes_received_ = 0;
};

}  // namespace vesko
