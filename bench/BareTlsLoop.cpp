#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>

#include "BareConversation.h"
#include "BareLoop.h"

namespace vesko {
namespace {

class TlsConnection {
 public:
  explicit TlsConnection(uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int on = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    SSL_set_fd(ssl_.get(), socket_);
    if (::connect(socket_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        SSL_connect(ssl_.get()) != 1) {
      throw std::runtime_error("no connection");
    }
  }
  ~TlsConnection() { ::close(socket_); }
  TlsConnection(const TlsConnection&) = delete;
  TlsConnection& operator=(const TlsConnection&) = delete;

  void Send(const std::string& bytes) {
    SSL_write(ssl_.get(), bytes.data(), static_cast<int>(bytes.size()));
  }

  long Receive(char* buffer, size_t size) {
    return SSL_read(ssl_.get(), buffer, static_cast<int>(size));
  }

 private:
  const int socket_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context_{SSL_CTX_new(TLS_client_method()),
                                                             SSL_CTX_free};
  std::unique_ptr<SSL, decltype(&SSL_free)> ssl_{SSL_new(context_.get()), SSL_free};
};

}  // namespace

BareLoopResult RunBareTlsLoop(uint16_t port, const std::string& user, const std::string& password,
                              int down_lines) {
  TlsConnection connection(port);
  return HoldConversation(connection, user, password, down_lines);
}

}  // namespace vesko
