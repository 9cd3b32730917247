#include "demo/Pop3Server.h"

#include <QCoreApplication>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <deque>
#include <future>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "demo/Pop3Dialogue.h"

namespace vesko::demo {
namespace {

constexpr qint64 kLongestLine = 1000;  // bytes

/// The mailboxes, shared by the sessions and by callers on other threads.
struct Mailboxes {
  std::mutex mutex;
  Maildrops maildrops;
  uint64_t last_unique_id = 0;
};

/// The session of one client, with the faults built in. Deletes itself when the client is gone and
/// the commands that it sent before have been carried out.
class Connection : public QObject {
 public:
  /// Takes ownership of the socket.
  Connection(QTcpSocket* socket, Mailboxes& mailboxes, const Pop3Faults& faults)
      : QObject(socket->parent()),
        socket_(*socket),
        mailboxes_(mailboxes),
        faults_(faults),
        dialogue_(std::make_unique<Pop3Dialogue>(mailboxes.maildrops)) {
    socket->setParent(this);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    pause_.setSingleShot(true);
    connect(&pause_, &QTimer::timeout, this, [this] { Speak(); });
    connect(socket, &QTcpSocket::readyRead, this, [this] { Hear(); });
    connect(socket, &QTcpSocket::disconnected, this, [this] {
      client_gone_ = true;
      EndWhenDone();
    });
    if (!faults_.never_answer) SpeakAfter(faults_.greeting_delay);
  }
  ~Connection() override { Forget(); }

 private:
  bool LineWaits() const { return !ended_ && !lines_.empty(); }

  void Hear() {
    if (faults_.never_answer) {
      socket_.readAll();
      return;
    }
    while (socket_.canReadLine()) lines_.push_back(socket_.readLine().toStdString());
    if (socket_.bytesAvailable() > kLongestLine) {
      socket_.abort();
    } else if (greeted_ && !pause_.isActive() && LineWaits()) {
      SpeakAfter(faults_.answer_delay);
    }
  }

  void SpeakAfter(std::chrono::milliseconds delay) {
    delay.count() > 0 ? pause_.start(delay) : Speak();
  }

  /// Greets or answers, and goes on until there is nothing to answer or an answer has to wait.
  void Speak() {
    do {
      greeted_ ? AnswerLine() : Greet();
    } while (LineWaits() && faults_.answer_delay.count() == 0);
    if (LineWaits()) pause_.start(faults_.answer_delay);
    EndWhenDone();
  }

  void Greet() {
    greeted_ = true;
    Send(faults_.garbage.value_or(Pop3Dialogue::Greeting()));
  }

  void AnswerLine() {
    const std::string line = std::move(lines_.front());
    lines_.pop_front();
    std::string answer;
    {
      const std::lock_guard lock(mailboxes_.mutex);
      answer =
          dialogue_->Answer(std::string_view(line).substr(0, line.find_last_not_of("\r\n") + 1));
    }
    Send(answer);
    if (dialogue_ && dialogue_->Ended()) Close();
  }

  void Send(std::string_view text) {
    if (faults_.close_after) text = text.substr(0, *faults_.close_after - sent_);
    sent_ += text.size();
    if (client_gone_) return;
    socket_.write(text.data(), static_cast<qint64>(text.size()));
    socket_.flush();
    if (faults_.close_after && sent_ >= *faults_.close_after) Close();
  }

  /// Closes the connection when everything has been sent.
  void Close() {
    ended_ = true;
    socket_.disconnectFromHost();
  }

  void EndWhenDone() {
    if (!client_gone_ || LineWaits()) return;
    ended_ = true;
    pause_.stop();
    Forget();
    deleteLater();
  }

  /// Releases the mailbox.
  void Forget() {
    const std::lock_guard lock(mailboxes_.mutex);
    dialogue_.reset();
  }

  QTcpSocket& socket_;
  Mailboxes& mailboxes_;
  const Pop3Faults& faults_;
  std::unique_ptr<Pop3Dialogue> dialogue_;
  QTimer pause_;                   // before the next answer
  std::deque<std::string> lines_;  // not answered yet
  size_t sent_ = 0;
  bool client_gone_ = false;
  bool greeted_ = false;
  bool ended_ = false;
};

}  // namespace

class Pop3Server::Impl : public QThread {
 public:
  Impl(std::vector<Pop3Account> accounts, Pop3Faults faults) : faults_(std::move(faults)) {
    for (Pop3Account& account : accounts) {
      mailboxes_.maildrops[account.user].password = account.password;
      for (std::string& message : account.messages) Deliver(account.user, std::move(message));
    }
    if (QCoreApplication::instance() == nullptr) {
      throw std::runtime_error("POP3 server: there is no QCoreApplication");
    }
    std::future<uint16_t> port = listening_.get_future();
    start();
    try {
      port_ = port.get();
    } catch (...) {
      wait();
      throw;
    }
  }

  ~Impl() override {
    quit();
    wait();
  }

  uint16_t Port() const { return port_; }

  void Deliver(const std::string& user, std::string message) {
    const std::lock_guard lock(mailboxes_.mutex);
    mailboxes_.maildrops.at(user).messages.push_back(
        {std::move(message), "message-" + std::to_string(++mailboxes_.last_unique_id)});
  }

  std::vector<std::string> Messages(const std::string& user) {
    const std::lock_guard lock(mailboxes_.mutex);
    std::vector<std::string> texts;
    const auto found = mailboxes_.maildrops.find(user);
    if (found == mailboxes_.maildrops.end()) return texts;
    for (const auto& message : found->second.messages) texts.push_back(message.text);
    return texts;
  }

 private:
  void run() override {
    QTcpServer server;
    connect(&server, &QTcpServer::newConnection, &server, [&] {
      while (QTcpSocket* socket = server.nextPendingConnection()) {
        new Connection(socket, mailboxes_, faults_);  // owned by the server
      }
    });
    if (!server.listen(QHostAddress::LocalHost)) {
      const std::runtime_error failure("POP3 server: " + server.errorString().toStdString());
      return listening_.set_exception(std::make_exception_ptr(failure));
    }
    listening_.set_value(server.serverPort());
    exec();
  }

  const Pop3Faults faults_;
  Mailboxes mailboxes_;
  std::promise<uint16_t> listening_;
  uint16_t port_ = 0;
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
