#pragma once

#include <cstdint>
#include <functional>

#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "pop3/AccountRun.h"
#include "pop3/Pop3Session.h"
#include "pop3/ProgressView.h"

namespace vesko {

/// One run of the progress window: first the deletion pass, then the check of all accounts, each
/// through a POP3 session (RFC 1939). Nothing is thrown to the caller. What goes wrong is shown by
/// the view or ignored; running out of memory closes the connection and ends the run, and the
/// numbers of messages that it leaves behind are still safe to delete by.
class CheckRun {
 public:
  /// All arguments must outlive the run, which uses the socket only while Activate is at work.
  CheckRun(const Services& services, SharedData& data, ProgressView& view);
  CheckRun(const CheckRun&) = delete;
  CheckRun& operator=(const CheckRun&) = delete;

  /// The window is about to be shown: the next Activate runs a check.
  void Prepare() { started_ = false; }

  /// The window was activated. The first time after Prepare this runs everything, and returns when
  /// it is done (the view has then been told to unload the window) or the window was unloaded on
  /// the way. The socket is closed then. Later activations do nothing.
  void Activate();

  /// The user's buttons; they may be pressed at any moment. Next ends the current account, Cancel
  /// the whole run. Both log out first when there is a connection.
  void Next();
  void Cancel();

  /// The window was unloaded, by whatever means. This alone does not log out.
  void WindowUnloaded() { account_.End(); }

  /// Whether the last session was stopped by the user or by the window closing.
  bool Cancelled() const { return session_.State() == SessionState::kStopped; }

  /// Whether at least one fetched message is unread.
  bool NewMail() const { return data_.mails.AnyUnread(); }

 private:
  // Runs a step; when memory runs out in it, the run ends.
  void Contain(const std::function<void()>& step);
  void Unload();

  // The socket's events lead to the session between these two.
  void TakeSocket();
  void LeaveSocket();
  void CheckAllAccounts();
  void KnowMaildrops();
  void CheckAccount(int32_t position);
  bool RunSession();

  const Services& services_;
  SharedData& data_;
  ProgressView& view_;
  Pop3Session session_;
  AccountRun account_;
  bool started_ = false;
};

}  // namespace vesko
