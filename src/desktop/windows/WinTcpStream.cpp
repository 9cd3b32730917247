#include "desktop/windows/WinTcpStream.h"

#include <ws2tcpip.h>

#include <algorithm>
#include <climits>
#include <utility>

#include "desktop/SocketWords.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

constexpr int kPieceSize = 64 * 1024;
constexpr UINT kFirstMessage = WM_APP;
constexpr UINT kLastMessage = WM_APP + 0x3FFF;  // the end of the range for a window's own use

UINT After(UINT message) { return message == kLastMessage ? kFirstMessage : message + 1; }

WinAddress AnyAddress(int family, uint16_t port) {
  WinAddress any;
  any.storage.ss_family = static_cast<decltype(any.storage.ss_family)>(family);
  any.size = family == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
  SS_PORT(&any.storage) = htons(port);
  return any;
}

// Says of a host only that this computer has no way to it by this kind of address.
bool IsAboutRoute(int error) {
  return error == WSAENETUNREACH || error == WSAEADDRNOTAVAIL || error == WSAEAFNOSUPPORT;
}

// The system tells a connection that the peer broke off in several ways, by what it was doing.
bool IsReset(int error) {
  return error == WSAECONNRESET || error == WSAECONNABORTED || error == WSAENETRESET ||
         error == WSAESHUTDOWN;
}

}  // namespace

WinTcpStream::WinTcpStream()
    : window_([this](UINT message, WPARAM, LPARAM lparam) {
        Event(message, WSAGETSELECTEVENT(lparam), WSAGETSELECTERROR(lparam));
      }),
      piece_(std::make_unique_for_overwrite<char[]>(kPieceSize)),
      message_(kFirstMessage) {}

void WinTcpStream::Open(ByteStreamListener& listener, std::vector<WinAddress> addresses,
                        uint16_t local_port) {
  listener_ = &listener;
  addresses_ = std::move(addresses);
  std::reverse(addresses_.begin(), addresses_.end());
  local_port_ = local_port;
  connect_error_ = 0;
  TryNextAddress();
}

void WinTcpStream::Close() {
  CloseSocket();
  addresses_.clear();
  unsent_.clear();
}

void WinTcpStream::Send(std::string_view bytes) {
  unsent_ += bytes;
  if (!blocked_) Flush();
}

void WinTcpStream::FailLater(int system_error) {
  late_error_ = system_error;
  PostMessageW(window_.Get(), message_, 0, WSAMAKESELECTREPLY(FD_CLOSE, system_error));
}

void WinTcpStream::TryNextAddress() {
  while (!addresses_.empty()) {
    const WinAddress address = addresses_.back();
    addresses_.pop_back();
    if (StartConnecting(address)) return;
  }
  Fail(connect_error_);
}

bool WinTcpStream::StartConnecting(const WinAddress& address) {
  socket_ = WSASocketW(address.Family(), SOCK_STREAM, IPPROTO_TCP, nullptr, 0, WSA_FLAG_OVERLAPPED);
  if (socket_ == INVALID_SOCKET) return ConnectFailed(WSAGetLastError());
  SetHandleInformation(reinterpret_cast<HANDLE>(socket_), HANDLE_FLAG_INHERIT, 0);
  // A command waits for its reply, so holding it back to fill a packet only loses time.
  const BOOL on = TRUE;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
  if (local_port_ != 0) {
    const WinAddress local = AnyAddress(address.Family(), local_port_);
    if (bind(socket_, local.Get(), local.size) != 0) return ConnectFailed(WSAGetLastError());
  }
  const long events = FD_CONNECT | FD_READ | FD_WRITE | FD_CLOSE;
  if (WSAAsyncSelect(socket_, window_.Get(), message_, events) != 0 ||
      (connect(socket_, address.Get(), address.size) != 0 && WSAGetLastError() != WSAEWOULDBLOCK)) {
    return ConnectFailed(WSAGetLastError());
  }
  blocked_ = true;
  return true;
}

bool WinTcpStream::ConnectFailed(int error) {
  CloseSocket();
  if (connect_error_ == 0 || !IsAboutRoute(error)) connect_error_ = error;
  return false;
}

// What comes here was posted; the socket that it speaks of may be gone by now.
void WinTcpStream::Event(UINT message, int event, int error) {
  if (message != message_ || socket_ == INVALID_SOCKET || peer_closed_) return;
  switch (event) {
    case FD_CONNECT:
      return FinishConnecting(error);
    case FD_READ:
      return error != 0 ? Fail(error) : Readable();
    case FD_WRITE:
      blocked_ = false;
      return Flush();
    case FD_CLOSE:
      return PeerClosing(error);
  }
}

void WinTcpStream::FinishConnecting(int error) {
  if (error != 0) {
    ConnectFailed(error);
    return TryNextAddress();
  }
  addresses_.clear();
  blocked_ = false;
  listener_->Opened();
}

// One read a message: the system posts again while there is more, so a second read just to learn
// that there is none would cost every reply a system call.
void WinTcpStream::Readable() {
  const int size = recv(socket_, piece_.get(), kPieceSize, 0);
  if (size > 0) return listener_->BytesArrived({piece_.get(), static_cast<size_t>(size)});
  if (size < 0 && WSAGetLastError() != WSAEWOULDBLOCK) Fail(WSAGetLastError());
}

// The system says so once, though data may still wait; so the message is posted on until it is
// read.
void WinTcpStream::PeerClosing(int error) {
  if (error == 0) error = late_error_;
  if (error != 0) return Fail(error);
  const int size = recv(socket_, piece_.get(), kPieceSize, 0);
  if (size > 0) {
    PostMessageW(window_.Get(), message_, 0, WSAMAKESELECTREPLY(FD_CLOSE, 0));
    return listener_->BytesArrived({piece_.get(), static_cast<size_t>(size)});
  }
  if (size < 0 && WSAGetLastError() != WSAEWOULDBLOCK) return Fail(WSAGetLastError());
  peer_closed_ = true;
  listener_->PeerClosed();
}

// Never reports: it is called from within Send.
void WinTcpStream::Flush() {
  while (!unsent_.empty() && !blocked_) {
    const int size = static_cast<int>(std::min<size_t>(unsent_.size(), INT_MAX));
    const int sent = send(socket_, unsent_.data(), size, 0);
    if (sent > 0) {
      unsent_.erase(0, static_cast<size_t>(sent));
    } else {
      blocked_ = true;  // or over
      if (WSAGetLastError() != WSAEWOULDBLOCK) FailLater(WSAGetLastError());
    }
  }
}

void WinTcpStream::CloseSocket() {
  if (socket_ != INVALID_SOCKET) closesocket(std::exchange(socket_, INVALID_SOCKET));
  message_ = After(message_);
  peer_closed_ = false;
  late_error_ = 0;
  blocked_ = false;
}

void WinTcpStream::Fail(int system_error) {
  Close();
  const int32_t number = IsReset(system_error) ? kSocketConnectionReset : system_error;
  listener_->Failed(number, SocketErrorText(number));
}

}  // namespace vesko
