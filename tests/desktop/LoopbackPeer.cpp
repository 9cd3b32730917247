#include "desktop/LoopbackPeer.h"

#ifdef _WIN32
#include <winsock2.h>
// After winsock2.h.
#include <ws2tcpip.h>
#else
#include <netdb.h>
#include <netinet/in.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <stdexcept>
#include <utility>

namespace vesko {
namespace {

#ifdef _WIN32
using Handle = SOCKET;
constexpr DWORD kPatience = 10000;
constexpr int kNoSignal = 0;

void CloseDescriptor(intptr_t fd) { ::closesocket(static_cast<SOCKET>(fd)); }

void StartSockets() {
  WSADATA data;
  static const int started = WSAStartup(MAKEWORD(2, 2), &data);
  if (started != 0) throw std::runtime_error("no sockets");
}
#else
using Handle = int;
constexpr timeval kPatience{10, 0};
constexpr int kNoSignal = MSG_NOSIGNAL;

void CloseDescriptor(intptr_t fd) { ::close(static_cast<int>(fd)); }

void StartSockets() {}
#endif

Handle ToHandle(intptr_t fd) { return static_cast<Handle>(fd); }

template <typename Value>
void SetOption(intptr_t fd, int option, const Value& value) {
  ::setsockopt(ToHandle(fd), SOL_SOCKET, option, reinterpret_cast<const char*>(&value),
               sizeof value);
}

int32_t PortOf(intptr_t fd, decltype(&::getsockname) name) {
  sockaddr_in6 address{};  // has the port where the address of the other family has it
  socklen_t size = sizeof address;
  name(ToHandle(fd), reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.sin6_port);
}

}  // namespace

LoopbackPeer::LoopbackPeer(const char* address, int backlog) {
  StartSockets();
  addrinfo hints{};
  hints.ai_flags = AI_NUMERICHOST | AI_PASSIVE;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(address, "0", &hints, &found) != 0) throw std::runtime_error(address);
  listener_ = static_cast<intptr_t>(::socket(found->ai_family, SOCK_STREAM, 0));
  const bool bound =
      ::bind(ToHandle(listener_), found->ai_addr, static_cast<int>(found->ai_addrlen)) == 0;
  ::freeaddrinfo(found);
  if (!bound || ::listen(ToHandle(listener_), backlog) != 0)
    throw std::runtime_error("cannot listen");
  SetOption(listener_, SO_RCVTIMEO, kPatience);
  port_ = PortOf(listener_, ::getsockname);
}

LoopbackPeer::~LoopbackPeer() {
  Close();
  CloseDescriptor(listener_);
}

bool LoopbackPeer::HasNews() const {
  const Handle handle = ToHandle(fd_ >= 0 ? fd_ : listener_);
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(handle, &readable);
  timeval at_once{};
  return ::select(static_cast<int>(handle) + 1, &readable, nullptr, nullptr, &at_once) > 0;
}

bool LoopbackPeer::Accept() {
  Close();
  fd_ = static_cast<intptr_t>(::accept(ToHandle(listener_), nullptr, nullptr));
  SetOption(fd_, SO_RCVTIMEO, kPatience);
  return fd_ >= 0;
}

int32_t LoopbackPeer::ClientPort() const { return PortOf(fd_, ::getpeername); }

bool LoopbackPeer::Send(const std::string& bytes) {
  size_t sent = 0;
  while (sent < bytes.size()) {
    const auto size = ::send(ToHandle(fd_), bytes.data() + sent,
                             static_cast<int>(bytes.size() - sent), kNoSignal);
    if (size <= 0) return false;
    sent += static_cast<size_t>(size);
  }
  return true;
}

std::string LoopbackPeer::Receive(size_t most) {
  std::string bytes(most, '\0');
  const auto size = ::recv(ToHandle(fd_), bytes.data(), static_cast<int>(bytes.size()), 0);
  bytes.resize(size > 0 ? static_cast<size_t>(size) : 0);
  return bytes;
}

void LoopbackPeer::Close() {
  if (fd_ >= 0) CloseDescriptor(std::exchange(fd_, -1));
}

void LoopbackPeer::Reset() {
  const linger at_once{1, 0};
  SetOption(fd_, SO_LINGER, at_once);
  Close();
}

int32_t DeadPort() { return LoopbackPeer().Port(); }

}  // namespace vesko
