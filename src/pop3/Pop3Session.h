#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "base/KeyedCollection.h"
#include "base/Text.h"
#include "config/Configuration.h"
#include "maillist/colMails.h"
#include "platform/Services.h"
#include "pop3/ProgressView.h"
#include "pop3/ReplyBuffer.h"

namespace vesko {

/// What the session did last.
enum class SessionState : int32_t {
  kConnecting = 0,  // waits for the greeting
  kUserSent = 1,
  kPassSent = 2,
  kStatSent = 3,
  kTopSent = 4,  // collects a multi-line reply
  kDeleSent = 5,
  kQuitSent = 6,  // ended normally
  kStopped = 7,   // by the user or by the window closing
};

/// The longest reply, in bytes on the wire; a longer one ends the session. It bounds what a hostile
/// server can make the host allocate.
inline constexpr uint64_t kLongestReply = uint64_t{128} << 20;

/// A command as it may be shown: of a password only its length is seen.
Text MaskedCommand(const Text& command);

/// One POP3 conversation (RFC 1939) at a time, driven by the socket's events: it logs in, asks for
/// the size of the mailbox, then either fetches the first lines of every message or deletes the
/// messages of a list, and logs out. A command is sent only when the reply to the one before is
/// complete. Replies are not to be trusted: bad ones are shown in a box or ignored, and nothing is
/// thrown but std::bad_alloc.
class Pop3Session {
 public:
  /// The server to connect to, and the user to log in as.
  struct Login {
    Text host;
    Text user;
    Text password;  // plain
    int32_t port = kPop3Port;
  };

  /// Keyed like colMails.
  using DeletionList = KeyedCollection<colMails::Message>;

  /// What has come of a session.
  struct Outcome {
    std::optional<int32_t> count;  // of messages in the mailbox; nothing until STAT has told it
    bool saw_all = false;          // every message was fetched before the session logged out
    bool shrunk = false;           // fewer messages than expected, so nothing was deleted
    bool delete_sent = false;      // at least one DELE was sent
    bool quit_sent = false;        // the server carries out the DELEs that it has accepted
    size_t deleted = 0;            // DELEs that were accepted, from the beginning of the list
    bool host_not_found = false;   // the connection failed because there is no such host
  };

  /// All arguments must outlive the session.
  Pop3Session(const Services& services, const Configuration& configuration, ProgressView& view)
      : services_(services), configuration_(configuration), view_(view) {}

  /// Called when something has arrived, before it is dealt with. Must be set.
  std::function<void()> on_arrival;

  /// Called for every message fetched, with its Server and Index set. Must be set.
  std::function<void(colMails::Message message)> on_message;

  /// To be set before Begin. The maildrop is what the login opens.
  void SetLogin(Login login) { login_ = std::move(login); }
  const Login& GetLogin() const { return login_; }
  Maildrop GetMaildrop() const { return {login_.host, login_.port, login_.user}; }

  /// The messages to delete, by the numbers they had when the mailbox held `known_count` messages.
  /// If STAT tells of fewer, those numbers have moved, and the session logs out without deleting.
  /// With an empty list the session fetches.
  void SetDeletions(DeletionList list, int32_t known_count);
  const DeletionList& Deletions() const { return deletions_; }

  /// A connection is about to be requested: the state and the outcome start afresh.
  void Begin();

  /// The connection is closed: gives back the memory of an unfinished reply.
  void End() { buffer_.Clear(); }

  /// The user or the closing window stops the session. It sends nothing more by itself.
  void Stop() { state_ = SessionState::kStopped; }

  /// Logs out whatever is going on, and ends as if everything had been done. What still arrives of
  /// an interrupted reply is not an error: it closes the connection.
  void Quit();

  SessionState State() const { return state_; }

  /// The outcome so far; complete when the connection is closed.
  const Outcome& Result() const { return outcome_; }

  /// The last line sent, without its line end. It outlives sessions and accounts, and may hold a
  /// password: see MaskedCommand.
  const Text& LastCommand() const { return last_command_; }

  /// Seconds since data last arrived, or since waiting began.
  double Silence() const { return services_.clock.Seconds() - last_activity_; }
  void StartWaiting() { last_activity_ = services_.clock.Seconds(); }

  /// The socket's events. HandleArrival returns whether any text had arrived.
  bool HandleArrival();
  void HandleError(int32_t number, const Text& description);

  /// The peer has closed: handles what it sent before. A refusal counts even without a line end.
  void HandlePeerClosed();

 private:
  // From an arrival to the step that it makes possible.
  void HandleText();
  void HandleReply(const Text& reply);
  void HandleInterrupted();
  void HandleCount(const Text& reply);
  void HandleHeader();
  void HandleDeletion();
  // A refusal and a reply beyond the limit close the connection and leave the state as it is, so
  // that the session does not count as ended normally.
  void Reject(const Text& reply);
  void RejectTooLong();
  bool IsTooLong() const;

  // Every reply that is complete is taken by one of these; the limit of the next one starts there.
  Text TakeReply();
  void ReadHeader(cMessage& message);

  void Greeted();
  void StartFetching();
  void StartDeleting();
  void FetchCurrent();
  void DeleteCurrent();

  // Sends a command and enters a state, even if the command cannot be sent. Returns whether it was.
  bool Send(SessionState next, Text command);
  void SendQuit();
  void ShowPosition();

  const Services& services_;
  const Configuration& configuration_;
  ProgressView& view_;
  Login login_;
  SessionState state_ = SessionState::kConnecting;
  bool interrupted_ = false;      // by Quit
  bool awaits_deletion_ = false;  // the reply to the last DELE
  Outcome outcome_;
  Text last_command_;
  double last_activity_ = 0;
  // Messages to fetch or delete, and the one that the last command was about, from 1.
  int32_t total_ = 0;
  int32_t current_ = 0;
  ReplyBuffer buffer_;
  uint64_t reply_start_ = 0;  // bytes that the socket had received before the current reply
  DeletionList deletions_;
  int32_t known_count_ = 0;  // of messages in the mailbox when they were numbered
};

}  // namespace vesko
