#include "desktop/linux/socket/TcpStream.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QNetworkInterface>
#include <algorithm>
#include <cerrno>
#include <utility>

#include "desktop/common/SocketMessages.h"
#include "desktop/linux/socket/SocketErrors.h"

namespace vesko {
namespace {

constexpr size_t kPieceSize = 256 * 1024;

struct SocketAddress {
  sockaddr_storage storage{};
  socklen_t size = 0;

  const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&storage); }
};

SocketAddress ToSocketAddress(const QHostAddress& address, uint16_t port) {
  SocketAddress result;
  if (address.protocol() == QAbstractSocket::IPv6Protocol) {
    auto* v6 = reinterpret_cast<sockaddr_in6*>(&result.storage);
    v6->sin6_family = AF_INET6;
    v6->sin6_port = htons(port);
    v6->sin6_scope_id =
        static_cast<uint32_t>(QNetworkInterface::interfaceIndexFromName(address.scopeId()));
    const Q_IPV6ADDR bytes = address.toIPv6Address();
    std::copy(std::begin(bytes.c), std::end(bytes.c), v6->sin6_addr.s6_addr);
    result.size = sizeof(sockaddr_in6);
  } else {
    auto* v4 = reinterpret_cast<sockaddr_in*>(&result.storage);
    v4->sin_family = AF_INET;
    v4->sin_port = htons(port);
    v4->sin_addr.s_addr = htonl(address.toIPv4Address());
    result.size = sizeof(sockaddr_in);
  }
  return result;
}

// Says of a host only that this computer has no way to it by this kind of address.
bool IsAboutRoute(int error) {
  return error == ENETUNREACH || error == EADDRNOTAVAIL || error == EAFNOSUPPORT;
}

bool IsPassing(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

}  // namespace

TcpStream::TcpStream(ByteStreamListener& listener)
    : listener_(listener), piece_(std::make_unique_for_overwrite<char[]>(kPieceSize)) {
  QObject::connect(&read_, &QSocketNotifier::activated, [this] { Readable(); });
  QObject::connect(&write_, &QSocketNotifier::activated, [this] { Writable(); });
}

void TcpStream::Open(const QList<QHostAddress>& addresses, uint16_t port, uint16_t local_port) {
  addresses_ = addresses;
  port_ = port;
  local_port_ = local_port;
  connect_error_ = 0;
  TryNextAddress();
}

int TcpStream::Release() {
  StopWatching();
  return std::exchange(fd_, -1);
}

void TcpStream::Close() {
  StopWatching();
  if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  addresses_.clear();
  unsent_.clear();
  send_error_ = 0;
}

void TcpStream::Send(std::string_view bytes) {
  unsent_ += bytes;
  if (!write_.isEnabled()) Flush();
}

void TcpStream::TryNextAddress() {
  while (!addresses_.isEmpty()) {
    if (StartConnecting(addresses_.takeFirst())) return;
  }
  Fail(connect_error_);
}

bool TcpStream::StartConnecting(const QHostAddress& address) {
  const SocketAddress peer = ToSocketAddress(address, port_);
  fd_ = ::socket(peer.storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (fd_ < 0) return ConnectFailed(errno);
  // A command waits for its reply, so holding it back to fill a packet only loses time.
  const int on = 1;
  ::setsockopt(fd_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
  if (local_port_ != 0) {
    const bool v6 = peer.storage.ss_family == AF_INET6;
    const SocketAddress local =
        ToSocketAddress(v6 ? QHostAddress::AnyIPv6 : QHostAddress::AnyIPv4, local_port_);
    if (::bind(fd_, local.Get(), local.size) < 0) return ConnectFailed(errno);
  }
  if (::connect(fd_, peer.Get(), peer.size) < 0 && errno != EINPROGRESS) {
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
  listener_.Opened();
}

// One read a turn: the event loop calls again while there is more, so a second read just to learn
// that there is none would cost every reply a system call.
void TcpStream::Readable() {
  const ssize_t size = ::recv(fd_, piece_.get(), kPieceSize, 0);
  if (size > 0) return listener_.BytesArrived({piece_.get(), static_cast<size_t>(size)});
  if (size < 0 && IsPassing(errno)) return;
  if (size < 0) return Fail(errno);
  if (send_error_ != 0) return Fail(send_error_);
  StopWatching();
  listener_.PeerClosed();
}

// Never reports: it is called from within Send. A socket with an error counts as writable, so the
// event loop comes back for it.
void TcpStream::Flush() {
  const ssize_t sent = ::send(fd_, unsent_.data(), unsent_.size(), MSG_NOSIGNAL);
  if (sent > 0) unsent_.erase(0, static_cast<size_t>(sent));
  if (sent < 0 && !IsPassing(errno)) send_error_ = errno;
  write_.setEnabled(!unsent_.empty());
}

void TcpStream::StopWatching() {
  read_.setEnabled(false);
  write_.setEnabled(false);
  connecting_ = false;
}

void TcpStream::Fail(int system_error) {
  Close();
  const int32_t number = SocketErrorNumber(system_error);
  listener_.Failed(number, SocketErrorText(number));
}

}  // namespace vesko
