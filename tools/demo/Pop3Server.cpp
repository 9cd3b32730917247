#include "demo/Pop3Server.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <list>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "demo/Pop3Dialogue.h"

namespace vesko::demo {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr size_t kLongestLine = 1000;
constexpr size_t kPieceSize = 65536;

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {
    if (fd_ < 0) throw std::system_error(errno, std::generic_category(), "POP3 server");
  }
  ~Descriptor() { ::close(fd_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int Get() const { return fd_; }

 private:
  int fd_;
};

void Check(int result) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), "POP3 server");
}

bool WouldBlock() { return errno == EAGAIN || errno == EINTR; }

// One client: bytes in, answers out, as the faults want it.
class Connection {
 public:
  Connection(int fd, Maildrops& maildrops, const Pop3Faults& faults)
      : fd_(fd),
        faults_(faults),
        dialogue_(maildrops),
        due_(SteadyClock::now() + faults.greeting_delay) {
    int on = 1;
    ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    SpeakWhenDue();
  }

  int Fd() const { return fd_.Get(); }
  bool Over() const { return over_; }

  /// When the next thing is to be said; nothing while there is nothing to say.
  std::optional<SteadyClock::time_point> Due() const {
    const bool has_something = !greeted_ || LineWaits();
    return has_something && !faults_.never_answer ? std::optional(due_) : std::nullopt;
  }
  short Wanted() const { return static_cast<short>(POLLIN | (out_.empty() ? 0 : POLLOUT)); }

  void SpeakWhenDue() {
    while (Due() && *Due() <= SteadyClock::now()) {
      if (greeted_) {
        AnswerLine();
      } else {
        greeted_ = true;
        Send(faults_.garbage.value_or(Pop3Dialogue::Greeting()));
      }
      if (LineWaits()) WaitForAnswer();
    }
  }

  void Serve(short happened) {
    if (happened & POLLOUT) Flush();
    if (happened & (POLLIN | POLLHUP | POLLERR)) Read();
  }

 private:
  void Read() {
    char piece[kPieceSize];
    ssize_t size = ::recv(Fd(), piece, sizeof piece, 0);
    if (size < 0 && WouldBlock()) return;
    if (size <= 0) {
      over_ = true;
      return;
    }
    if (faults_.never_answer) return;
    const bool waited = LineWaits();
    in_.append(piece, static_cast<size_t>(size));
    if (in_.size() > kLongestLine && !LineWaits()) over_ = true;
    if (greeted_ && !waited && LineWaits()) WaitForAnswer();
    SpeakWhenDue();
  }

  bool LineWaits() const { return in_.find('\n') != std::string::npos; }

  void WaitForAnswer() { due_ = std::max(due_, SteadyClock::now() + faults_.answer_delay); }

  void AnswerLine() {
    size_t end = in_.find('\n');
    std::string_view line = std::string_view(in_).substr(0, end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!dialogue_.Ended()) Send(dialogue_.Answer(line));
    in_.erase(0, end + 1);
  }

  void Send(std::string_view text) {
    if (faults_.close_after) text = text.substr(0, *faults_.close_after - accepted_);
    accepted_ += text.size();
    out_ += text;
    Flush();
  }

  void Flush() {
    std::string_view left = std::string_view(out_).substr(sent_);
    ssize_t sent = left.empty() ? 0 : ::send(Fd(), left.data(), left.size(), MSG_NOSIGNAL);
    if (sent < 0 && !WouldBlock()) over_ = true;
    if (sent > 0) sent_ += static_cast<size_t>(sent);
    if (sent_ == out_.size()) {
      out_.clear();
      sent_ = 0;
    }
    const bool cut = faults_.close_after && accepted_ >= *faults_.close_after;
    if (out_.empty() && (cut || dialogue_.Ended())) over_ = true;
  }

  Descriptor fd_;
  const Pop3Faults& faults_;
  Pop3Dialogue dialogue_;
  SteadyClock::time_point due_;
  std::string in_;   // lines not answered yet, and the beginning of one
  std::string out_;  // answers on their way; empty when the client has taken all
  size_t sent_ = 0;  // how much of out_ the client has taken
  size_t accepted_ = 0;
  bool greeted_ = false;
  bool over_ = false;
};

int NewListener() { return ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0); }

}  // namespace

class Pop3Server::Impl {
 public:
  Impl(std::vector<Pop3Account> accounts, Pop3Faults faults) : faults_(std::move(faults)) {
    for (Pop3Account& account : accounts) {
      maildrops_[account.user].password = account.password;
      for (std::string& message : account.messages) Deliver(account.user, std::move(message));
    }
    Listen();
    thread_ = std::thread([this] { Run(); });
  }

  ~Impl() {
    ::eventfd_write(wake_.Get(), 1);
    thread_.join();
  }

  uint16_t Port() const { return port_; }

  void Deliver(const std::string& user, std::string message) {
    std::lock_guard lock(mutex_);
    maildrops_.at(user).messages.push_back(
        {std::move(message), "message-" + std::to_string(++last_unique_id_)});
  }

  std::vector<std::string> Messages(const std::string& user) const {
    std::lock_guard lock(mutex_);
    std::vector<std::string> texts;
    auto found = maildrops_.find(user);
    if (found == maildrops_.end()) return texts;
    for (const auto& message : found->second.messages) texts.push_back(message.text);
    return texts;
  }

 private:
  void Listen() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    Check(::bind(listener_.Get(), reinterpret_cast<sockaddr*>(&address), size));
    Check(::listen(listener_.Get(), SOMAXCONN));
    Check(::getsockname(listener_.Get(), reinterpret_cast<sockaddr*>(&address), &size));
    port_ = ntohs(address.sin_port);
  }

  void Run() {
    std::vector<pollfd> polled;
    for (;;) {
      polled = {{wake_.Get(), POLLIN, 0}, {listener_.Get(), POLLIN, 0}};
      for (const Connection& c : connections_) polled.push_back({c.Fd(), c.Wanted(), 0});
      ::poll(polled.data(), polled.size(), MillisecondsToNextWord());
      if (polled[0].revents) return;
      std::lock_guard lock(mutex_);
      ServeAll(polled);
      if (polled[1].revents) Accept();
    }
  }

  void ServeAll(const std::vector<pollfd>& polled) {
    size_t next = 2;
    for (Connection& connection : connections_) {
      connection.Serve(polled[next++].revents);
      connection.SpeakWhenDue();
    }
    connections_.remove_if([](const Connection& c) { return c.Over(); });
  }

  void Accept() {
    int fd = ::accept4(listener_.Get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (fd < 0) return;
    connections_.emplace_back(fd, maildrops_, faults_);
    if (connections_.back().Over()) connections_.pop_back();
  }

  // -1, without end, when nobody waits for a word.
  int MillisecondsToNextWord() const {
    int64_t shortest = -1;
    for (const Connection& c : connections_) {
      if (!c.Due()) continue;
      auto left = std::chrono::ceil<std::chrono::milliseconds>(*c.Due() - SteadyClock::now());
      int64_t wait = std::max<int64_t>(left.count(), 0);
      shortest = shortest < 0 ? wait : std::min(shortest, wait);
    }
    return static_cast<int>(shortest);
  }

  const Pop3Faults faults_;
  Descriptor listener_{NewListener()};
  Descriptor wake_{::eventfd(0, EFD_CLOEXEC)};
  uint16_t port_ = 0;
  mutable std::mutex mutex_;  // the maildrops, which sessions and callers share
  Maildrops maildrops_;
  uint64_t last_unique_id_ = 0;
  std::list<Connection> connections_;  // the thread's own; unlock their maildrops when they go
  std::thread thread_;
};

Pop3Server::Pop3Server(std::vector<Pop3Account> accounts, Pop3Faults faults)
    : impl_(std::make_unique<Impl>(std::move(accounts), std::move(faults))) {}

Pop3Server::~Pop3Server() = default;

uint16_t Pop3Server::Port() const { return impl_->Port(); }

void Pop3Server::Deliver(const std::string& user, std::string message) {
  impl_->Deliver(user, std::move(message));
}

std::vector<std::string> Pop3Server::Messages(const std::string& user) const {
  return impl_->Messages(user);
}

}  // namespace vesko::demo
