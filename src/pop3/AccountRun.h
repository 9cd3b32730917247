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

/// What the check and the deletion pass do alike with one account: get its data ready, hold one
/// session with its server and wait for the end of it, and give way to the user at any moment.
class AccountRun {
 public:
  /// All must outlive this object.
  AccountRun(const Services& services, SharedData& data, ProgressView& view, Pop3Session& session)
      : services_(services), data_(data), view_(view), session_(session) {}

  /// The window was opened, or unloaded: afterwards nothing is asked, shown or connected to.
  void Open() { over_ = false; }
  void End();
  bool Over() const { return over_; }

  /// Turns to the account at a position, counted from 1.
  void Start(int32_t position);

  /// Gets the account's data ready for a session; false when there is to be none: the user said
  /// no, or left the account or the window, or the socket cannot be had. `retry` is whether a
  /// session of this account has failed before.
  bool Prepare(bool retry);

  /// Connects and waits until the session is over. True when it ended normally and the window
  /// is still there; the socket is closed in every case.
  bool RunSession();

  /// Lets events run after a failed session; for a second where no question will come before the
  /// next one, so that the user can leave a server that refuses.
  void Settle();

  /// The user's Next: leaves the account, logging out where there is a connection.
  void Skip();

  void RefreshStatus();

 private:
  bool Left() const { return over_ || skipped_; }
  void RunPending() { services_.pump.RunPending(std::chrono::milliseconds(0)); }

  bool WouldAsk() const;
  bool ConfirmRetry();
  Account ReadAccount() const;
  Credentials CredentialsOf(const Account& account) const;
  bool IsComplete(const Account& account) const;
  bool Complete(Account& account);
  void Use(const Account& account);
  Text DecryptedOrEmpty(const Text& scrambled) const;

  void Connect();
  void Wait();
  bool WaitOneTurn();
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
