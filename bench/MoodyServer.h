#pragma once

#include <cstddef>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "demo/Pop3Dialogue.h"
#include "support/ServedSocket.h"

namespace vesko {

/// POP3 mailboxes in memory behind a server that misbehaves by a seed: it refuses, stays silent,
/// talks nonsense, breaks off in the middle of an answer, refuses a command. Between checks mail
/// comes, and another program takes some or all of it. It keeps count of what that does to mail.
class MoodyServer {
 public:
  MoodyServer(uint32_t seed, const std::vector<std::string>& users, const std::string& password);

  /// The server's side of the one connection that there is at a time.
  ServerTurn OnLine(const std::string& line);

  /// Some bytes of an answer, mostly many.
  size_t Piece(std::string_view left);

  /// Time passes between two checks.
  void LiveOn();

  /// The subject of messages that the client is to take for spam.
  static constexpr const char* kSpamSubject = "ILOVEYOU";

  /// Message-IDs of all mail in a mailbox whose last session fetched all of it and ended normally;
  /// nothing for any other mailbox.
  std::vector<std::string> FullyFetched(const std::string& user) const;

  size_t connections = 0;
  size_t disturbed = 0;  // connections on which something went wrong
  size_t fetched = 0;    // messages
  size_t deleted = 0;    // messages, by the client
  size_t lost = 0;       // messages that the client deleted though they are no spam

 private:
  enum class Mood {
    kGood,
    kRefuses,
    kUnknownHost,
    kNeverAnswers,
    kTalksNonsense,
    kRefusesCommand,
    kFallsSilent,
    kBreaksOff,
    kResets,
  };

  size_t Below(size_t limit) { return random_() % limit; }
  bool Sometimes(size_t one_in) { return Below(one_in) == 0; }
  ServerTurn Greet();
  ServerTurn Disturb(std::string answer);
  void NoteDeletions(const std::vector<std::string>& before);
  demo::Maildrop& Mailbox() { return maildrops_.at(user_); }
  static std::vector<std::string> Identifiers(const demo::Maildrop& maildrop);
  std::string NewMessage(const std::string& user);

  std::mt19937 random_;
  demo::Maildrops maildrops_;
  std::unique_ptr<demo::Pop3Dialogue> dialogue_;
  Mood mood_ = Mood::kGood;
  size_t commands_until_mood_ = 0;
  std::string user_;
  size_t fetched_of_session_ = 0;
  std::set<std::string> fully_fetched_;  // users
};

}  // namespace vesko
