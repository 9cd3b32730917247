#include "pop3/DeletionPass.h"

namespace vesko {

void DeletionPass::Run() {
  if (!data_.mails.AnySpam()) return;
  const int32_t accounts = data_.configuration.Accounts.Count();
  for (int32_t i = 1; i <= accounts && !account_.Over(); ++i) DeleteMailOf(i);
  if (!account_.Over()) view_.ShowProgress(u"SPAM mails are deleted !!!");
}

void DeletionPass::DeleteMailOf(int32_t position) {
  account_.Start(position);
  if (DeleteOnServer()) ForgetDeleted();
  // A list left behind would turn the next account's check into a deletion.
  session_.Deletions() = {};
}

bool DeletionPass::DeleteOnServer() {
  for (bool retry = false; account_.Prepare(retry); retry = true) {
    const Text host = Quoted(session_.GetLogin().host);
    view_.ShowCaption(u"Deleting SPAM mail of " + host + u" ...");
    view_.ShowProgress(u"Connecting to " + host + u" ...");
    ListMarked();
    if (session_.Deletions().Count() == 0) return false;
    if (account_.RunSession()) return true;
    account_.Settle();
  }
  return false;
}

void DeletionPass::ListMarked() {
  const Pop3Session::Login& login = session_.GetLogin();
  Pop3Session::DeletionList list;
  for (colMails::Message& message : data_.mails.MarkedForDeletion(login.host, login.user)) {
    const Text key = colMails::Key(login.host, message->MessageID);
    list.Add(std::move(message), key);
  }
  session_.Deletions() = std::move(list);
}

void DeletionPass::ForgetDeleted() {
  session_.Deletions().ForEach([this](const colMails::Message& message) {
    data_.mails.Remove(colMails::Key(session_.GetLogin().host, message->MessageID));
    return true;
  });
}

}  // namespace vesko
