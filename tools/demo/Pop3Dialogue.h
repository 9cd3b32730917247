#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vesko::demo {

/// One account's mail. A message is raw text (RFC 5322) with lines ended by CR LF.
struct Maildrop {
  struct Message {
    std::string text;
    std::string unique_id;  // stays with the message from session to session
  };
  std::string password;
  std::vector<Message> messages;
  bool locked = false;  // a session has it
};

using Maildrops = std::map<std::string, Maildrop>;  // by user name

/// The server's side of one POP3 conversation (RFC 1939), without a network: takes a line, returns
/// the answer. Locks its maildrop from PASS until it ends; messages are deleted by QUIT only.
class Pop3Dialogue {
 public:
  /// `maildrops` must outlive the dialogue.
  explicit Pop3Dialogue(Maildrops& maildrops) : maildrops_(maildrops) {}
  ~Pop3Dialogue() { Unlock(); }
  Pop3Dialogue(const Pop3Dialogue&) = delete;
  Pop3Dialogue& operator=(const Pop3Dialogue&) = delete;

  static std::string Greeting() { return "+OK POP3 server ready\r\n"; }

  /// The whole answer to one command line (without its line end), ready to be sent.
  std::string Answer(std::string_view line);

  /// QUIT was answered: the connection is to be closed.
  bool Ended() const { return ended_; }

 private:
  struct Command;

  std::string User(std::string_view argument);
  std::string Pass(std::string_view argument);
  std::string Stat(std::string_view argument);
  std::string List(std::string_view argument);
  std::string Uidl(std::string_view argument);
  std::string Top(std::string_view argument);
  std::string Retr(std::string_view argument);
  std::string Dele(std::string_view argument);
  std::string Noop(std::string_view argument);
  std::string Rset(std::string_view argument);
  std::string Quit(std::string_view argument);

  template <typename Describe>
  std::string Listing(std::string_view argument, Describe describe) const;
  std::optional<size_t> MessageAt(std::string_view number) const;
  void Unlock();

  Maildrops& maildrops_;
  std::string user_;
  Maildrop* maildrop_ = nullptr;  // set from PASS to QUIT
  std::vector<bool> deleted_;     // a mark for each message of the maildrop
  bool ended_ = false;
};

}  // namespace vesko::demo
