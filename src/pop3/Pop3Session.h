#pragma once

#include <cstdint>
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

  /// What the session asks of the run that it is part of.
  class Listener {
   public:
    virtual ~Listener() = default;

    /// Something has arrived: what the window shows of the connection may have changed.
    virtual void RefreshStatus() = 0;

    /// The first lines of message `number`. The text is gone when this returns.
    virtual void StoreHeader(TextView text, int32_t number) = 0;
  };

  /// All must outlive the session.
  Pop3Session(const Services& services, const Configuration& configuration, ProgressView& view,
              Listener& listener)
      : services_(services), configuration_(configuration), view_(view), listener_(listener) {}

  void SetLogin(Login login) { login_ = std::move(login); }
  const Login& GetLogin() const { return login_; }

  /// A connection is about to be requested. Forgets what the last one left of a reply.
  void Begin();

  /// The user or the closing window stops the session: it takes no further step.
  void Stop() { state_ = SessionState::kStopped; }

  /// Logs out in the middle of whatever goes on, as if everything were done. What still arrives of
  /// an interrupted reply closes the connection and is no error.
  void Quit();

  SessionState State() const { return state_; }

  /// The last line sent, without its end, through all accounts of the window's life; may hold a
  /// password.
  const Text& LastCommand() const { return last_command_; }

  /// The last connection failed because there is no such host.
  bool HostNotFound() const { return host_not_found_; }

  /// Seconds since data arrived last, or since waiting began.
  double Silence() const { return services_.clock.Seconds() - last_activity_; }
  void StartWaiting() { last_activity_ = services_.clock.Seconds(); }

  /// Messages to delete; when it is empty the session fetches.
  DeletionList& Deletions() { return deletions_; }

  /// The socket's events. HandleArrival tells whether there was anything to take.
  bool HandleArrival();
  void HandleError(int32_t number, const Text& description);

  /// The peer has closed: handles what it sent before. A refusal without a line end counts.
  void HandlePeerClosed();

 private:
  void HandleText();
  void HandleReply(const Text& reply);
  void HandleCount(const Text& reply);
  void HandleHeader();
  void HandleDeletion();
  void Reject(const Text& reply);

  void Greeted();
  void StartFetching();
  void StartDeleting();
  void FetchCurrent();
  void DeleteCurrent();

  void Send(SessionState next, Text command);
  void ShowPosition();

  const Services& services_;
  const Configuration& configuration_;
  ProgressView& view_;
  Listener& listener_;
  Login login_;
  SessionState state_ = SessionState::kConnecting;
  bool interrupted_ = false;
  bool host_not_found_ = false;
  Text last_command_;
  double last_activity_ = 0;
  int32_t total_ = 0;
  int32_t current_ = 0;
  ReplyBuffer buffer_;
  DeletionList deletions_;
};

}  // namespace vesko
