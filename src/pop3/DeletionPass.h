#pragma once

#include <cstdint>

#include "pop3/AccountRun.h"

namespace vesko {

/// Deletes the messages that are marked for deletion, first from their servers, in one session for
/// each account that fetched such messages, and then from colMails.
///
/// A message is deleted by its number, so only numbers that still hold are used (see colMails):
///  * What the last complete session of its account did not see is gone from the server already. It
///    leaves colMails without a DELE, and without a connection when nothing else is marked.
///  * When the mailbox holds fewer messages than that session saw, nothing is deleted, and the user
///    is told to look at the list again.
///  * Once a DELE and a QUIT have been sent, by the session itself or by the user's Next or Cancel,
///    no number of that mailbox is used again until a check has seen all of it.
/// Entries leave colMails only when the server has accepted their DELE and QUIT has been sent.
class DeletionPass {
 public:
  /// All arguments must outlive the pass.
  DeletionPass(SharedData& data, ProgressView& view, Pop3Session& session, AccountRun& account)
      : data_(data), view_(view), session_(session), account_(account) {}

  /// Does nothing unless at least one message is marked as spam, whichever ones are marked for
  /// deletion. Afterwards the session's deletion list is empty, however the pass has ended.
  void Run();

 private:
  void DeleteMailOf(int32_t position);
  bool DeleteOnServer();
  void List(const std::vector<colMails::Message>& messages);
  bool RunSession();
  void RemoveDeleted(size_t count);
  void RemoveMarkedAndGone();

  SharedData& data_;
  ProgressView& view_;
  Pop3Session& session_;
  AccountRun& account_;
};

}  // namespace vesko
