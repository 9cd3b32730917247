#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vesko::demo {

struct Pop3Account {
  std::string user;
  std::string password;
  std::vector<std::string> messages;  // raw, lines ended by CR LF
};

/// How the server misbehaves, to see how a client copes.
struct Pop3Faults {
  std::chrono::milliseconds greeting_delay{0};
  std::chrono::milliseconds answer_delay{0};  // before each answer to a command
  bool never_answer = false;                  // accepts connections and stays silent
  std::optional<std::string> garbage;         // sent, as it is, in place of the greeting
  std::optional<size_t> close_after;          // closes after this many bytes sent on a connection
};

/// A POP3 server (RFC 1939) that keeps its mail in memory, for any number of clients at once. It
/// listens on 127.0.0.1, on a free port, and runs in a thread of its own from construction to
/// destruction, which closes all connections. Members may be called from any thread.
class Pop3Server {
 public:
  /// Throws std::runtime_error where no port can be had, or where the process has no
  /// QCoreApplication yet, since Qt runs no event loop without one.
  explicit Pop3Server(std::vector<Pop3Account> accounts, Pop3Faults faults = {});
  ~Pop3Server();

  uint16_t Port() const;

  /// Puts a message into an account's mailbox; a session that has begun does not see it.
  /// Precondition: the account exists.
  void Deliver(const std::string& user, std::string message);

  /// What is in the account's mailbox now; nothing for an unknown user.
  std::vector<std::string> Messages(const std::string& user) const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vesko::demo
