#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Locale.h"
#include "platform/Pump.h"
#include "platform/Socket.h"
#include "support/FakeClock.h"

namespace vesko {

/// What a server does when it is connected to, or when it was sent a line.
struct ServerTurn {
  std::string bytes{};      // sent in pieces
  double after = 0;         // so many seconds later
  bool closes = false;      // behind the bytes
  int32_t error = 0;        // behind the bytes the connection fails with this number
  bool stays_away = false;  // nothing happens at all, not even a connection
};

/// A socket whose server is a function, and the pump that carries what the server sends. It sleeps
/// by moving the clock. Unlike a ScriptedSocket it has no opinion on what the client should say.
class ServedSocket : public Socket, public Pump {
 public:
  /// Both must outlive the socket.
  ServedSocket(FakeClock& clock, const Locale& locale)
      : clock_(clock), decoder_(locale.NewDecoder()), locale_(locale) {}

  /// The server. The line comes without its end; an empty one is a new connection.
  std::function<ServerTurn(const std::string& line)> on_line;

  /// How many of these bytes, which are never none, arrive at once; all of them when not set.
  std::function<size_t(std::string_view left)> piece;

  /// What the user does, before anything else happens in a turn of the pump.
  std::function<void()> on_turn;

  std::vector<std::string> sent;  // by the client, as bytes, line ends included

  SocketState State() const override { return state_; }
  void SetLocalPort(int32_t) override {}
  void Connect(const Text& host, int32_t port) override;
  void SendData(TextView text) override;
  Text GetData() override;
  uint64_t BytesReceived() const override { return received_; }
  void Close() override;

  /// Throws what no one catches when a run does not come to an end.
  void RunPending(std::chrono::milliseconds longest_wait) override;

 private:
  static constexpr double kNever = std::numeric_limits<double>::infinity();

  void Take(ServerTurn turn);
  bool Deliver();
  void DeliverPiece();

  FakeClock& clock_;
  std::unique_ptr<TextDecoder> decoder_;
  const Locale& locale_;
  SocketState state_ = SocketState::kClosed;
  ServerTurn turn_;  // what is left of it
  double due_ = kNever;
  Text arrived_;
  uint64_t received_ = 0;
  int idle_turns_ = 0;
};

}  // namespace vesko
