#pragma once

#include <cstdint>
#include <functional>

#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "pop3/AccountRun.h"
#include "pop3/Pop3Session.h"
#include "pop3/ProgressView.h"

namespace vesko {

/// One run of the progress window: the deletion pass, then the check of all accounts, each through
/// a POP3 session (RFC 1939). Nothing is thrown to the caller: what goes wrong is shown by the view
/// or ignored, and running out of memory ends the run as the user's Cancel does, without a logout.
class CheckRun {
 public:
  /// All must outlive the run. The socket's events are the run's own while Activate is at work.
  CheckRun(const Services& services, SharedData& data, ProgressView& view);
  CheckRun(const CheckRun&) = delete;
  CheckRun& operator=(const CheckRun&) = delete;

  /// The next Activate runs a check.
  void Prepare() { started_ = false; }

  /// The window was activated: the first time after Prepare runs everything and returns when it is
  /// done or the window is unloaded. The socket is closed then.
  void Activate();

  /// The user's buttons. Next ends the current account, Cancel the whole run.
  void Next();
  void Cancel();

  /// The window was unloaded, by whatever means.
  void WindowUnloaded() { account_.End(); }

  /// The session was stopped by the user or by the window closing.
  bool Cancelled() const { return session_.State() == SessionState::kStopped; }

  /// At least one fetched message is unread.
  bool NewMail() const { return data_.mails.AnyUnread(); }

 private:
  void Contain(const std::function<void()>& step);
  void Unload();
  void TakeSocket();
  void LeaveSocket();
  void CheckAllAccounts();
  void CheckAccount(int32_t position);
  bool RunSession();
  void StoreHeader(TextView text, int32_t number);

  const Services& services_;
  SharedData& data_;
  ProgressView& view_;
  Pop3Session session_;
  AccountRun account_;
  bool started_ = false;
};

}  // namespace vesko
