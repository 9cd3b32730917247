#pragma once

#include <cstdint>

#include "pop3/AccountRun.h"

namespace vesko {

/// Deletes the messages that are marked for it from their servers, one session per account that
/// fetched such messages, and then from colMails.
class DeletionPass {
 public:
  /// All must outlive the pass.
  DeletionPass(SharedData& data, ProgressView& view, Pop3Session& session, AccountRun& account)
      : data_(data), view_(view), session_(session), account_(account) {}

  /// Does nothing unless a message is marked as spam. The session's deletion list is empty
  /// afterwards, however the pass ends.
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
