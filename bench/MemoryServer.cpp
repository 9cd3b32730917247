// A POP3 server that costs next to nothing, for measuring clients. It answers from memory, with one
// blocking thread for each connection, on a free port of 127.0.0.1, which it prints. The user name
// is the number of messages. Ends with the process that started it.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <string>
#include <string_view>
#include <thread>

#include "SampleMail.h"

namespace {

constexpr int kWidestNumber = 5;

// The reply to TOP for every message: one text in which only the number's digits change.
class TopReply {
 public:
  TopReply() : text_("+OK\r\n" + vesko::SampleMail(1) + ".\r\n") {
    for (size_t at = text_.find("00001"); at != text_.npos; at = text_.find("00001", at + 1)) {
      places_[count_++] = at;
    }
  }

  std::string_view For(std::string_view number) {
    for (int i = 0; i < count_; ++i) {
      char* end = text_.data() + places_[i] + kWidestNumber;
      std::fill(end - kWidestNumber, end, '0');
      std::copy(number.begin(), number.end(), end - number.size());
    }
    return text_;
  }

 private:
  std::string text_;
  size_t places_[8];
  int count_ = 0;
};

class Client {
 public:
  explicit Client(int fd) : fd_(fd) {}
  ~Client() { ::close(fd_); }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  void Serve() {
    Send("+OK ready\r\n");
    char line[1024];
    for (;;) {
      ssize_t size = ::recv(fd_, line, sizeof line, 0);
      if (size < 2) return;
      const std::string_view command(line, static_cast<size_t>(size) - 2);
      Answer(command);
      if (command == "QUIT") return;
    }
  }

 private:
  void Send(std::string_view text) { ::send(fd_, text.data(), text.size(), MSG_NOSIGNAL); }

  void Answer(std::string_view command) {
    if (command.starts_with("TOP ")) {
      std::string_view number = command.substr(4, command.find(' ', 4) - 4);
      return Send(top_.For(number.substr(0, kWidestNumber)));
    }
    if (command.starts_with("USER ")) count_ = command.substr(5);
    if (command == "STAT") return Send("+OK " + count_ + " 1000000\r\n");
    Send("+OK\r\n");
  }

  int fd_;
  std::string count_;
  TopReply top_;
};

}  // namespace

int main() {
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  if (::bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0) return 1;
  if (::listen(listener, 16) != 0) return 1;
  ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size);
  std::printf("%d\n", ntohs(address.sin_port));
  std::fflush(stdout);
  for (;;) {
    int fd = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) continue;
    int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    std::thread([fd] { Client(fd).Serve(); }).detach();
  }
}
