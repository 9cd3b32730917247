#pragma once

#include <memory>

#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "pop3/ProgressView.h"

namespace vesko {

/// One run of the progress window: the deletion pass, then the check of all accounts, each through
/// a POP3 session (RFC 1939). Errors reach the user through the view and never the caller.
class CheckRun {
 public:
  /// All must outlive the run. Takes over the socket's events.
  CheckRun(const Services& services, SharedData& data, ProgressView& view);
  ~CheckRun();

  /// The next Activate runs a check.
  void Prepare();

  /// The window was activated: the first time after Prepare runs everything and returns when it is
  /// done or the window is unloaded.
  void Activate();

  /// The user's buttons. Next ends the current account, Cancel the whole run.
  void Next();
  void Cancel();

  /// The window was unloaded, by whatever means.
  void WindowUnloaded();

  /// The session was stopped by the user or by the window closing.
  bool Cancelled() const;

  /// At least one fetched message is unread.
  bool NewMail() const;

 private:
  class Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace vesko
