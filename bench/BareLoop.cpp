#include "BareLoop.h"

#include "BareConversation.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <stdexcept>

namespace vesko {
namespace {

#ifdef _WIN32

using Size = int;
constexpr int kNoSignal = 0;

SOCKET NewSocket() {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  return ::socket(AF_INET, SOCK_STREAM, 0);
}

void CloseSocket(SOCKET socket) { ::closesocket(socket); }

#else

using Size = size_t;
constexpr int kNoSignal = MSG_NOSIGNAL;

int NewSocket() { return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); }

void CloseSocket(int socket) { ::close(socket); }

#endif

class Connection {
 public:
  explicit Connection(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
      throw std::runtime_error("no connection");
    }
    int on = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
  }
  ~Connection() { CloseSocket(socket_); }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  void Send(const std::string& bytes) {
    ::send(socket_, bytes.data(), static_cast<Size>(bytes.size()), kNoSignal);
  }

  long Receive(char* buffer, size_t size) {
    return static_cast<long>(::recv(socket_, buffer, static_cast<Size>(size), 0));
  }

 private:
  decltype(NewSocket()) socket_ = NewSocket();
};

}  // namespace

BareLoopResult RunBareLoop(uint16_t port, const std::string& user, const std::string& password,
                           int down_lines) {
  Connection connection(port);
  return HoldConversation(connection, user, password, down_lines);
}

}  // namespace vesko
