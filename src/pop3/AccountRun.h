#pragma once

#include <chrono>
#include <cstdint>

#include "base/Text.h"
#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "pop3/Pop3Session.h"
#include "pop3/ProgressView.h"

namespace vesko {

/// A value between apostrophes, as the window's texts show it.
Text Quoted(const Text& value);

/// The part that the check and the deletion pass share: for one account at a time, it gets the
/// credentials ready, runs a session with the server, and waits for its end. The user can leave the
/// account or close the window at any moment, also while a box is shown, because pending events run
/// during every wait. Nothing is thrown but std::bad_alloc.
class AccountRun {
 public:
  /// All arguments must outlive this object. The socket's events must lead to `session`.
  AccountRun(const Services& services, SharedData& data, ProgressView& view, Pop3Session& session)
      : services_(services), data_(data), view_(view), session_(session) {}

  /// The window has been opened.
  void Open() { over_ = false; }

  /// The window has been unloaded. The session stops, and from now on nothing is asked, shown or
  /// connected to until Open.
  void End();
  bool Over() const { return over_; }

  /// Turns to the account at a position, counted from 1, and enables or disables Next.
  void Start(int32_t position);

  /// Gets the login of the current account ready for a session. An account without a server, user
  /// or password, or with a control character in one of them, is completed by the user first, and
  /// the settings keep what was typed. With `retry` (a session of this account has failed) the user
  /// is asked whether to try again. Returns false when there is to be no session: the user said no,
  /// left the account or closed the window, or the socket is still in use.
  bool Prepare(bool retry);

  /// Connects to the server and waits until the session is over, the server has been silent for too
  /// long, or the user has had enough. Returns whether the session ended normally and the window is
  /// still there. The socket is closed in either case.
  bool RunSession();

  /// Lets events run after a failed session. When no question will precede the next attempt, this
  /// takes a second, so that nothing spins and the user can leave a server that refuses at once.
  void Settle();

  /// The user's Next: leaves the account, and logs out first when there is a connection. A logout
  /// that is under way already is not disturbed.
  void Skip();

  /// Shows the seconds of silence and the state of the connection.
  void RefreshStatus();

 private:
  bool Left() const { return over_ || skipped_; }
  void RunPending() { services_.pump.RunPending(std::chrono::milliseconds(0)); }

  /// Whether a further attempt begins with the retry question.
  bool WouldAsk() const;
  bool ConfirmRetry();
  Account ReadAccount() const;
  Credentials CredentialsOf(const Account& account) const;
  bool IsComplete(const Account& account) const;
  /// Lets the user complete the account until nothing in it is missing or unfit to be sent.
  bool Complete(Account& account);
  void Use(const Account& account);
  Text DecryptedOrEmpty(const Text& scrambled) const;

  void Connect();
  void Wait();
  /// Lets events run until the next thing is due. Returns whether to go on waiting.
  bool WaitOneTurn();
  /// Time to the next second on the label or to the end of the wait time, whichever is sooner.
  std::chrono::milliseconds UntilNextDuty() const;
  void LogOut();

  const Services& services_;
  SharedData& data_;
  ProgressView& view_;
  Pop3Session& session_;
  bool over_ = false;
  bool skipped_ = false;
  int32_t position_ = 0;
  int32_t last_shown_seconds_ = 0;
};

}  // namespace vesko
