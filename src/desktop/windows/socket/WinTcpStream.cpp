#include "desktop/windows/socket/WinTcpStream.h"

#include <ws2tcpip.h>

#include <algorithm>
#include <climits>
#include <utility>

#include "desktop/common/SocketMessages.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

constexpr int kPieceSize = 64 * 1024;

const sockaddr* ToSockaddr(const std::string& address) {
  return reinterpret_cast<const sockaddr*>(address.data());
}

std::string AnyAddress(int family, uint16_t port) {
  sockaddr_in6 any{};  // the larger one; both have family and port at the same places
  any.sin6_family = static_cast<decltype(any.sin6_family)>(family);
  any.sin6_port = htons(port);
  const size_t size = family == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
  return {reinterpret_cast<const char*>(&any), size};
}

// These errors only tell that this computer has no route for this kind of address.
bool IsAboutRoute(int error) {
  return error == WSAENETUNREACH || error == WSAEADDRNOTAVAIL || error == WSAEAFNOSUPPORT;
}

// A connection that the peer broke off has several errors, depending on what was going on.
bool IsReset(int error) {
  return error == WSAECONNRESET || error == WSAECONNABORTED || error == WSAENETRESET ||
         error == WSAESHUTDOWN;
}

}  // namespace

WinTcpStream::WinTcpStream(EventSources& sources)
    : sources_(sources),
      event_(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      piece_(std::make_unique_for_overwrite<char[]>(kPieceSize)) {}

WinTcpStream::~WinTcpStream() {
  Close();
  CloseHandle(event_);
}

void WinTcpStream::Open(StreamListener& listener, std::vector<std::string> addresses,
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
  if (state_ == State::kClosed) return;
  unsent_ += bytes;
  if (state_ == State::kConnected || state_ == State::kPeerClosed) Flush();
}

void WinTcpStream::FailLater(int system_error) {
  if (state_ == State::kClosed || state_ == State::kPeerClosed) return;
  state_ = State::kFailing;
  late_error_ = system_error;
  SetEvent(event_);
}

bool WinTcpStream::Deliver() {
  switch (state_) {
    case State::kConnecting:
      return FinishConnecting();
    case State::kConnected:
      Flush();
      return Receive();
    case State::kFailing:
      Fail(late_error_);
      return true;
    case State::kClosed:
    case State::kPeerClosed:
      break;
  }
  return false;
}

void WinTcpStream::TryNextAddress() {
  while (!addresses_.empty()) {
    const std::string address = std::move(addresses_.back());
    addresses_.pop_back();
    if (StartConnecting(address)) return;
  }
  Fail(connect_error_);
}

bool WinTcpStream::StartConnecting(const std::string& address) {
  const int family = ToSockaddr(address)->sa_family;
  socket_ = WSASocketW(family, SOCK_STREAM, IPPROTO_TCP, nullptr, 0, WSA_FLAG_OVERLAPPED);
  if (socket_ == INVALID_SOCKET) return ConnectFailed(WSAGetLastError());
  SetHandleInformation(reinterpret_cast<HANDLE>(socket_), HANDLE_FLAG_INHERIT, 0);
  // A command waits for its reply, so holding it back to fill a packet only loses time.
  const BOOL on = TRUE;
  setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
  if (local_port_ != 0) {
    const std::string local = AnyAddress(family, local_port_);
    if (bind(socket_, ToSockaddr(local), static_cast<int>(local.size())) != 0) {
      return ConnectFailed(WSAGetLastError());
    }
  }
  if (WSAEventSelect(socket_, event_, FD_CONNECT | FD_READ | FD_WRITE | FD_CLOSE) != 0 ||
      (connect(socket_, ToSockaddr(address), static_cast<int>(address.size())) != 0 &&
       WSAGetLastError() != WSAEWOULDBLOCK)) {
    return ConnectFailed(WSAGetLastError());
  }
  state_ = State::kConnecting;
  sources_.Add(*this, event_);
  return true;
}

bool WinTcpStream::ConnectFailed(int error) {
  CloseSocket();
  if (connect_error_ == 0 || !IsAboutRoute(error)) connect_error_ = error;
  return false;
}

// The event may have been set by an earlier socket, or not at all.
bool WinTcpStream::FinishConnecting() {
  WSANETWORKEVENTS events{};
  WSAEnumNetworkEvents(socket_, nullptr, &events);
  if ((events.lNetworkEvents & FD_CONNECT) == 0) return false;
  const int error = events.iErrorCode[FD_CONNECT_BIT];
  if (error != 0) {
    ConnectFailed(error);
    TryNextAddress();
  } else {
    addresses_.clear();
    state_ = State::kConnected;
    listener_->Opened();
  }
  return true;
}

// A read finds out everything, and makes the system set the event again. When data and the end
// arrive together, the event is set only once; true asks the caller to try again.
bool WinTcpStream::Receive() {
  const int size = recv(socket_, piece_.get(), kPieceSize, 0);
  if (size > 0) {
    listener_->BytesArrived({piece_.get(), static_cast<size_t>(size)});
  } else if (size == 0) {
    state_ = State::kPeerClosed;
    listener_->PeerClosed();
  } else if (WSAGetLastError() != WSAEWOULDBLOCK) {
    Fail(WSAGetLastError());
  } else {
    return false;
  }
  return true;
}

// Reports nothing, because Send calls it.
void WinTcpStream::Flush() {
  while (!unsent_.empty()) {
    const int size = static_cast<int>(std::min<size_t>(unsent_.size(), INT_MAX));
    const int sent = send(socket_, unsent_.data(), size, 0);
    if (sent <= 0) {
      if (WSAGetLastError() != WSAEWOULDBLOCK) FailLater(WSAGetLastError());
      return;
    }
    unsent_.erase(0, static_cast<size_t>(sent));
  }
}

void WinTcpStream::CloseSocket() {
  if (socket_ != INVALID_SOCKET) closesocket(std::exchange(socket_, INVALID_SOCKET));
  sources_.Remove(*this);
  state_ = State::kClosed;
}

void WinTcpStream::Fail(int system_error) {
  Close();
  const int32_t number = IsReset(system_error) ? kSocketConnectionReset : system_error;
  listener_->Failed(number, SocketErrorText(number));
}

}  // namespace vesko
