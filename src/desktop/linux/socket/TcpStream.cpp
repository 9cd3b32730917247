#include "desktop/linux/socket/TcpStream.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QObject>
#include <algorithm>
#include <cerrno>
#include <utility>

#include "desktop/common/SocketMessages.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

constexpr size_t kPieceSize = size_t{256} * 1024;

int32_t ErrorNumber(int system_error) {
  switch (system_error) {
    case ECONNREFUSED:
      return kSocketConnectionRefused;
    case ECONNRESET:
    case EPIPE:
      return kSocketConnectionReset;
    case ETIMEDOUT:
      return kSocketTimedOut;
    case EHOSTUNREACH:
      return kSocketHostUnreachable;
    case ENETUNREACH:
      return kSocketNetworkUnreachable;
    case ENETDOWN:
      return kSocketNetworkDown;
    case EADDRINUSE:
      return kSocketAddressInUse;
    case EADDRNOTAVAIL:
      return kSocketAddressNotAvailable;
    case EACCES:
    case EPERM:
      return kSocketPermissionDenied;
    default:
      return kSocketFault;
  }
}

const sockaddr* ToSockaddr(const std::string& address) {
  return reinterpret_cast<const sockaddr*>(address.data());
}

std::string AnyAddress(int family, uint16_t port) {
  sockaddr_in6 any{};  // the larger one; both have family and port at the same places
  any.sin6_family = static_cast<sa_family_t>(family);
  any.sin6_port = htons(port);
  const size_t size = family == AF_INET6 ? sizeof(sockaddr_in6) : sizeof(sockaddr_in);
  return {reinterpret_cast<const char*>(&any), size};
}

// These errors only tell that this computer has no route for this kind of address.
bool IsAboutRoute(int error) {
  return error == ENETUNREACH || error == EADDRNOTAVAIL || error == EAFNOSUPPORT;
}

bool IsTemporary(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

}  // namespace

TcpStream::TcpStream() : piece_(std::make_unique_for_overwrite<char[]>(kPieceSize)) {
  QObject::connect(&read_, &QSocketNotifier::activated, [this] { Readable(); });
  QObject::connect(&write_, &QSocketNotifier::activated, [this] { Writable(); });
}

void TcpStream::Open(StreamListener& listener, std::vector<std::string> addresses,
                     uint16_t local_port) {
  listener_ = &listener;
  addresses_ = std::move(addresses);
  std::reverse(addresses_.begin(), addresses_.end());
  local_port_ = local_port;
  connect_error_ = 0;
  TryNextAddress();
}

void TcpStream::Close() {
  StopWatching();
  if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  addresses_.clear();
  unsent_.clear();
  send_error_ = 0;
}

void TcpStream::Send(std::string_view bytes) {
  if (fd_ < 0) return;
  unsent_ += bytes;
  if (!write_.isEnabled()) Flush();
}

void TcpStream::TryNextAddress() {
  while (!addresses_.empty()) {
    const std::string address = std::move(addresses_.back());
    addresses_.pop_back();
    if (StartConnecting(address)) return;
  }
  Fail(connect_error_);
}

bool TcpStream::StartConnecting(const std::string& address) {
  const int family = ToSockaddr(address)->sa_family;
  fd_ = ::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd_ < 0) return ConnectFailed(errno);
  // A command waits for its reply, so holding it back to fill a packet only loses time.
  const int on = 1;
  ::setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  if (local_port_ != 0) {
    const std::string local = AnyAddress(family, local_port_);
    if (::bind(fd_, ToSockaddr(local), static_cast<socklen_t>(local.size())) < 0) {
      return ConnectFailed(errno);
    }
  }
  const auto size = static_cast<socklen_t>(address.size());
  if (::connect(fd_, ToSockaddr(address), size) < 0 && errno != EINPROGRESS) {
    return ConnectFailed(errno);
  }
  connecting_ = true;
  write_.setSocket(fd_);
  write_.setEnabled(true);
  return true;
}

bool TcpStream::ConnectFailed(int error) {
  StopWatching();
  if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  if (connect_error_ == 0 || !IsAboutRoute(error)) connect_error_ = error;
  return false;
}

void TcpStream::Writable() {
  if (connecting_) return FinishConnecting();
  if (send_error_ != 0) return Fail(send_error_);
  Flush();
}

void TcpStream::FinishConnecting() {
  int error = 0;
  socklen_t size = sizeof error;
  if (::getsockopt(fd_, SOL_SOCKET, SO_ERROR, &error, &size) < 0) error = errno;
  if (error != 0) {
    ConnectFailed(error);
    return TryNextAddress();
  }
  connecting_ = false;
  addresses_.clear();
  write_.setEnabled(false);
  read_.setSocket(fd_);
  read_.setEnabled(true);
  listener_->Opened();
}

// One read a turn: the event loop calls again while there is more. A second read just to learn that
// there is nothing would cost each reply a system call.
void TcpStream::Readable() {
  const ssize_t size = ::recv(fd_, piece_.get(), kPieceSize, 0);
  if (size > 0) return listener_->BytesArrived({piece_.get(), static_cast<size_t>(size)});
  if (size < 0 && IsTemporary(errno)) return;
  if (size < 0) return Fail(errno);
  if (send_error_ != 0) return Fail(send_error_);
  StopWatching();
  listener_->PeerClosed();
}

// Reports nothing, because Send calls it. A socket with an error counts as writable, so the event
// loop calls Writable for it.
void TcpStream::Flush() {
  const ssize_t sent = ::send(fd_, unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
  if (sent > 0) unsent_.erase(0, static_cast<size_t>(sent));
  if (sent < 0 && !IsTemporary(errno)) send_error_ = errno;
  write_.setEnabled(!unsent_.empty());
}

void TcpStream::StopWatching() {
  read_.setEnabled(false);
  write_.setEnabled(false);
}

void TcpStream::Fail(int system_error) {
  Close();
  const int32_t number = ErrorNumber(system_error);
  listener_->Failed(number, SocketErrorText(number));
}

}  // namespace vesko
