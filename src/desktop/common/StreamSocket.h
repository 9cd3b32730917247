#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "desktop/common/Background.h"
#include "desktop/common/HostLookup.h"
#include "desktop/common/StreamListener.h"
#include "platform/Locale.h"
#include "platform/Socket.h"

namespace vesko {

/// Where a connection leads, and how.
struct Destination {
  Text host;            // as the user wrote it
  HostLookup found;     // without an error
  uint16_t local_port;  // 0 is any
  bool tls;             // from the first byte
};

/// The connections of an operating system, one at a time. Everything is reported by the event loop.
class Streams {
 public:
  virtual ~Streams() = default;

  /// Connects to the first address that accepts. With TLS the stream opens when the handshake is
  /// over and the server's certificate has been accepted. The listener must live until Close. To be
  /// called by the event loop, with the stream closed: a failure may be reported at once.
  /// Raises nothing but std::bad_alloc.
  virtual void Open(Destination destination, StreamListener& listener) = 0;

  /// Sends all bytes in order and never blocks: bytes that the peer does not take yet are kept.
  /// Precondition: the stream is open.
  virtual void Send(std::string_view bytes) = 0;

  /// Drops the connection with all bytes that wait; with TLS the peer is told first. Returns at
  /// once in any state, and nothing is reported afterwards.
  virtual void Close() = 0;
};

/// Socket over an operating system's streams: the states, the checks of arguments, the look-up of
/// names and the conversion between bytes and text. Running out of memory while data arrives ends
/// the connection with an error. Must not be destroyed from within one of its events.
class StreamSocket final : public Socket, private StreamListener {
 public:
  /// A connection to one of `tls_ports` is TLS from its first byte. `look_up` runs on a thread of
  /// `background`. The locale must outlive the socket; `streams` may use `background`, but not
  /// while it is closed.
  StreamSocket(const Locale& locale, std::vector<int32_t> tls_ports, LookUpFunction look_up,
               std::unique_ptr<Background> background, std::unique_ptr<Streams> streams);

  /// Closes without telling anybody but the peer.
  ~StreamSocket() override;
  StreamSocket(const StreamSocket&) = delete;
  StreamSocket& operator=(const StreamSocket&) = delete;

  // The contract of these is that of Socket.
  SocketState State() const override { return state_; }
  void SetLocalPort(int32_t port) override { local_port_ = port; }
  void Connect(const Text& host, int32_t port) override;
  void SendData(TextView text) override;
  Text GetData() override;
  uint64_t BytesReceived() const override { return bytes_received_; }
  void Close() override;

 private:
  void LookedUp(HostLookup lookup);
  bool IsTlsPort() const;
  void FailLater(int32_t number);
  void FailWith(int32_t number);
  void Keep(Text text);
  template <typename Step>
  void Contain(Step step);

  // The stream's events.
  void Opened() override;
  void BytesArrived(std::string_view bytes) override;
  void PeerClosed() override;
  void Failed(int32_t number, const Text& description) override;

  const Locale& locale_;
  const std::unique_ptr<TextDecoder> decoder_;
  const std::vector<int32_t> tls_ports_;
  const LookUpFunction look_up_;
  const std::unique_ptr<Background> background_;
  const std::unique_ptr<Streams> streams_;

  SocketState state_ = SocketState::kClosed;
  Text host_;  // of the last Connect, with the port below
  int32_t port_ = 0;
  int32_t local_port_ = 0;
  Text text_;  // arrived and not taken yet
  uint64_t bytes_received_ = 0;
};

}  // namespace vesko
