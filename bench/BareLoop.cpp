#include "BareLoop.h"

#ifdef _WIN32
#include <winsock2.h>
#else
#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

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

  std::string_view Ask(std::string command, std::string_view end) {
    command.append("\r\n");
    ::send(socket_, command.data(), static_cast<Size>(command.size()), kNoSignal);
    return Receive(end);
  }

  std::string_view Receive(std::string_view end) {
    size_t size = 0;
    for (;;) {
      if (size == buffer_.size()) buffer_.resize(2 * size);
      const auto piece =
          ::recv(socket_, buffer_.data() + size, static_cast<Size>(buffer_.size() - size), 0);
      if (piece <= 0) throw std::runtime_error("the server closed the connection");
      size += static_cast<size_t>(piece);
      const std::string_view reply(buffer_.data(), size);
      if (reply.ends_with(end)) return reply;
    }
  }

 private:
  decltype(NewSocket()) socket_ = NewSocket();
  std::vector<char> buffer_ = std::vector<char>(65536);
};

}  // namespace

BareLoopResult RunBareLoop(uint16_t port, const std::string& user, const std::string& password,
                           int down_lines) {
  constexpr std::string_view kLine = "\r\n";
  constexpr std::string_view kDotLine = "\r\n.\r\n";
  Connection connection(port);
  connection.Receive(kLine);
  connection.Ask("USER " + user, kLine);
  connection.Ask("PASS " + password, kLine);
  BareLoopResult result;
  result.messages = std::atoi(std::string(connection.Ask("STAT", kLine)).c_str() + 4);
  const std::string lines = std::to_string(down_lines);
  for (int i = 1; i <= result.messages; ++i) {
    std::string command("TOP ");
    command.append(std::to_string(i)).append(1, ' ').append(lines);
    result.bytes += connection.Ask(std::move(command), kDotLine).size();
  }
  connection.Ask("QUIT", kLine);
  return result;
}

}  // namespace vesko
