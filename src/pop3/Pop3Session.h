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

/// Bytes of one reply at the most, as they come from the wire. A longer one ends the session.
inline constexpr uint64_t kLongestReply = uint64_t{128} << 20;

/// A command as it may be shown: of a password only its length is seen.
Text MaskedCommand(const Text& command);

/// One POP3 conversation (RFC 1939) at a time, driven by the socket's events: log in, ask for the
/// size of the mailbox, then fetch the first lines of every message or delete those of a list, and
/// log out. The next command leaves only after the whole reply to the one before. Whatever a server
/// sends ends in a box or in silence, never in an error to the caller.
class Pop3Session {
 public:
  /// Where a session goes and as whom.
  struct Login {
    Text host;
    Text user;
    Text password;  // plain
    int32_t port = kPop3Port;
  };

  /// Keyed like colMails.
  using DeletionList = KeyedCollection<colMails::Message>;

  /// All must outlive the session.
  Pop3Session(const Services& services, const Configuration& configuration, ProgressView& view)
      : services_(services), configuration_(configuration), view_(view) {}

  /// Something has arrived: what the window shows of the connection may have changed. Must be set.
  std::function<void()> on_arrival;

  /// The first lines of message `number`. The text is gone when this returns. Must be set.
  std::function<void(TextView text, int32_t number)> on_header;

  void SetLogin(Login login) { login_ = std::move(login); }
  const Login& GetLogin() const { return login_; }
  Maildrop GetMaildrop() const { return {login_.host, login_.port, login_.user}; }

  /// A connection is about to be requested.
  void Begin();

  /// The connection is closed: gives back the memory of an unfinished reply.
  void End() { buffer_ = {}; }

  /// The user or the closing window stops the session: it takes no further step.
  void Stop() { state_ = SessionState::kStopped; }

  /// Logs out in the middle of whatever goes on, as if everything were done. What still arrives of
  /// an interrupted reply closes the connection and is no error.
  void Quit();

  SessionState State() const { return state_; }

  /// The last line sent, without its end, through all accounts of the window's life; may hold a
  /// password.
  const Text& LastCommand() const { return last_command_; }

  /// What has come of the session since Begin.
  struct Outcome {
    std::optional<int32_t> count;  // of messages in the mailbox, when STAT told it
    bool saw_all = false;          // every message was fetched, and not ended by Quit before
    bool shrunk = false;           // nothing was deleted: the mailbox has lost messages
    bool delete_sent = false;      // at least one DELE has left
    bool quit_sent = false;        // the server deletes what it was told to
    size_t deleted = 0;            // so many DELE were accepted, from the beginning of the list
    bool host_not_found = false;   // the connection failed because there is no such host
  };
  const Outcome& Result() const { return outcome_; }

  /// Seconds since data arrived last, or since waiting began.
  double Silence() const { return services_.clock.Seconds() - last_activity_; }
  void StartWaiting() { last_activity_ = services_.clock.Seconds(); }

  /// Messages to delete, by the numbers that a session saw when the mailbox held `known_count`
  /// messages; when there are fewer now, the numbers have moved and the session logs out without
  /// deleting. With an empty list the session fetches.
  void SetDeletions(DeletionList list, int32_t known_count);
  const DeletionList& Deletions() const { return deletions_; }

  /// The socket's events. HandleArrival tells whether there was anything to take.
  bool HandleArrival();
  void HandleError(int32_t number, const Text& description);

  /// The peer has closed: handles what it sent before. A refusal without a line end counts.
  void HandlePeerClosed();

 private:
  void HandleText();
  void HandleReply(const Text& reply);
  void HandleInterrupted();
  void HandleCount(const Text& reply);
  void HandleHeader();
  void HandleDeletion();
  void Reject(const Text& reply);
  void RejectTooLong();
  bool IsTooLong() const;
  Text TakeReply();

  void Greeted();
  void StartFetching();
  void StartDeleting();
  void FetchCurrent();
  void DeleteCurrent();

  bool Send(SessionState next, Text command);
  void SendQuit();
  void ShowPosition();

  const Services& services_;
  const Configuration& configuration_;
  ProgressView& view_;
  Login login_;
  SessionState state_ = SessionState::kConnecting;
  bool interrupted_ = false;  // by Quit
  bool awaits_deletion_ = false;
  Outcome outcome_;
  Text last_command_;
  double last_activity_ = 0;
  int32_t total_ = 0;
  int32_t current_ = 0;
  ReplyBuffer buffer_;
  uint64_t reply_start_ = 0;  // what the socket had received when the last reply was complete
  DeletionList deletions_;
  int32_t known_count_ = 0;
};

}  // namespace vesko
