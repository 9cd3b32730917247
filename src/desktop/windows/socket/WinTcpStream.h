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

#include "desktop/common/ByteStream.h"
#include "desktop/windows/events/EventSources.h"

namespace vesko {

/// Keeps Winsock running in this process.
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

struct WinAddress {
  SOCKADDR_STORAGE storage{};
  int size = 0;

  int Family() const { return storage.ss_family; }
  const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }
};

/// A plain TCP connection, reusable. It reads first and waits only for what is not there yet, which
/// is what a check of many small replies lives on. Must not be destroyed from within a listener
/// call.
class WinTcpStream final : public ByteStream, private EventSources::Source {
 public:
  explicit WinTcpStream(EventSources& sources);
  ~WinTcpStream() override;
  WinTcpStream(const WinTcpStream&) = delete;
  WinTcpStream& operator=(const WinTcpStream&) = delete;

  /// Tries the addresses, which hold the port, in order until one accepts, with the system's
  /// time-outs; reports the outcome to the listener, which must live until Close. `local_port` 0 is
  /// any. To be called by the message pump, with the stream closed: a failure is reported at once.
  void Open(ByteStreamListener& listener, std::vector<WinAddress> addresses, uint16_t local_port);

  /// Drops the connection and all that waits.
  void Close();

  void Send(std::string_view bytes) override;

  /// The connection fails with a system error as soon as the sources are asked.
  void FailLater(int system_error);

 private:
  enum class State { kClosed, kConnecting, kConnected, kFailing, kPeerClosed };

  bool Deliver() override;
  void TryNextAddress();
  bool StartConnecting(const WinAddress& address);
  bool ConnectFailed(int error);
  bool FinishConnecting();
  bool Receive();
  void Flush();
  void CloseSocket();
  void Fail(int system_error);

  EventSources& sources_;
  const HANDLE event_;             // set by the system for the socket, or by FailLater
  std::unique_ptr<char[]> piece_;  // what one read takes
  ByteStreamListener* listener_ = nullptr;
  SOCKET socket_ = INVALID_SOCKET;
  State state_ = State::kClosed;
  std::vector<WinAddress> addresses_;  // not tried yet, the next one last
  uint16_t local_port_ = 0;
  int connect_error_ = 0;
  int late_error_ = 0;  // in state kFailing
  std::string unsent_;
};

}  // namespace vesko
