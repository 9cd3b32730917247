#pragma once

// Before windows.h, which would bring the older Winsock.
#include <winsock2.h>
// After winsock2.h.
#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/common/StreamListener.h"
#include "desktop/windows/events/EventSources.h"

namespace vesko {

/// Keeps Winsock loaded in this process while it lives.
class WinsockUse {
 public:
  WinsockUse() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
  }
  ~WinsockUse() { WSACleanup(); }
  WinsockUse(const WinsockUse&) = delete;
  WinsockUse& operator=(const WinsockUse&) = delete;
};

/// A TCP connection that is served by the thread's event sources; reusable. It reads first and
/// waits only when there is nothing to read, which makes checks of many small replies fast. Must
/// not be destroyed from within a call of its listener.
class WinTcpStream final : private EventSources::Source {
 public:
  explicit WinTcpStream(EventSources& sources);
  ~WinTcpStream() override;
  WinTcpStream(const WinTcpStream&) = delete;
  WinTcpStream& operator=(const WinTcpStream&) = delete;

  /// Tries the addresses (sockaddr structures with the port) in order until one accepts, with the
  /// system's time-outs, and reports the outcome to the listener, which must live until Close.
  /// `local_port` 0 is any. To be called by the event loop, with the stream closed: a failure may
  /// be reported at once.
  void Open(StreamListener& listener, std::vector<std::string> addresses, uint16_t local_port);

  /// Sends all bytes in order and never blocks: bytes that the peer does not take yet are kept. An
  /// error is reported later by the event loop. Does nothing when closed.
  void Send(std::string_view bytes);

  /// Drops the connection and all bytes that wait. Safe in any state.
  void Close();

  /// Lets the connection fail with a system error when the event sources are asked next.
  void FailLater(int system_error);

 private:
  /// kFailing: an error is reported when the event sources are asked next.
  enum class State { kClosed, kConnecting, kConnected, kFailing, kPeerClosed };

  /// Reports what has happened to the connection. Returns whether there was anything to report.
  bool Deliver() override;
  void TryNextAddress();
  bool StartConnecting(const std::string& address);
  bool ConnectFailed(int error);
  bool FinishConnecting();
  bool Receive();
  /// Sends as much of unsent_ as the system takes.
  void Flush();
  void CloseSocket();
  /// Closes the connection and tells the listener why.
  void Fail(int system_error);

  EventSources& sources_;
  const HANDLE event_;             // set by the system for the socket, or by FailLater
  std::unique_ptr<char[]> piece_;  // buffer of one read
  StreamListener* listener_ = nullptr;
  SOCKET socket_ = INVALID_SOCKET;
  State state_ = State::kClosed;
  std::vector<std::string> addresses_;  // not tried yet, the next one last
  uint16_t local_port_ = 0;
  int connect_error_ = 0;
  int late_error_ = 0;  // to be reported, in state kFailing
  std::string unsent_;
};

}  // namespace vesko
