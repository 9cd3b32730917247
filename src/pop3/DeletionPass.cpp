#include "pop3/DeletionPass.h"

namespace vesko {

void DeletionPass::Run() {
  if (!needs_.mails.AnySpam()) return;
  const int32_t accounts = needs_.configuration.Accounts.Count();
  for (int32_t i = 1; i <= accounts && !account_.Over(); ++i) DeleteMailOf(i);
  if (!account_.Over()) needs_.view.ShowProgress(u"SPAM mails are deleted !!!");
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
    needs_.view.ShowCaption(u"Deleting SPAM mail of " + host + u" ...");
    needs_.view.ShowProgress(u"Connecting to " + host + u" ...");
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
  for (colMails::Message& message : needs_.mails.MarkedForDeletion(login.host, login.user)) {
    const Text key = colMails::Key(login.host, message->MessageID);
    list.Add(std::move(message), key);
  }
  session_.Deletions() = std::move(list);
}

void DeletionPass::ForgetDeleted() {
  session_.Deletions().ForEach([this](const colMails::Message& message) {
    needs_.mails.Remove(colMails::Key(session_.GetLogin().host, message->MessageID));
    return true;
  });
}

}  // namespace vesko
