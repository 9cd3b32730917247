#include "pop3/DeletionPass.h"

namespace vesko {
namespace {

constexpr TextView kMailboxChanged =
    u"The mailbox has changed since it was checked. Nothing was deleted; please look at the list "
    u"again.";

/// Forgets the numbers of a maildrop after a session that may have moved them. It does so even if
/// memory runs out during the session, because the next deletion must not use them.
class NumbersAfterDeletion {
 public:
  NumbersAfterDeletion(colMails& mails, const Pop3Session& session)
      : mails_(mails), session_(session), maildrop_(session.GetMaildrop()) {}
  ~NumbersAfterDeletion() {
    const Pop3Session::Outcome& outcome = session_.Result();
    const bool deleted = outcome.delete_sent && outcome.quit_sent;
    if (deleted || outcome.shrunk) mails_.ForgetNumbers(maildrop_);
  }
  NumbersAfterDeletion(const NumbersAfterDeletion&) = delete;
  NumbersAfterDeletion& operator=(const NumbersAfterDeletion&) = delete;

 private:
  colMails& mails_;
  const Pop3Session& session_;
  const Maildrop maildrop_;
};

}  // namespace

void DeletionPass::Run() {
  if (!data_.mails.AnySpam()) return;
  const int32_t accounts = data_.configuration.Accounts.Count();
  for (int32_t i = 1; i <= accounts && !account_.Over(); ++i) DeleteMailOf(i);
  if (!account_.Over()) view_.ShowProgress(u"SPAM mails are deleted !!!");
}

void DeletionPass::DeleteMailOf(int32_t position) {
  account_.Start(position);
  if (DeleteOnServer()) RemoveMarkedAndGone();
  // A list left behind would turn the next account's check into a deletion.
  session_.SetDeletions({}, 0);
}

bool DeletionPass::DeleteOnServer() {
  for (bool retry = false; account_.Prepare(retry); retry = true) {
    const Text host = Quoted(session_.GetLogin().host);
    view_.ShowCaption(u"Deleting SPAM mail of " + host + u" ...");
    view_.ShowProgress(u"Connecting to " + host + u" ...");
    List(data_.mails.MarkedForDeletion(session_.GetMaildrop()).numbered);
    if (session_.Deletions().Count() == 0) return true;
    if (RunSession()) return session_.Result().deleted == session_.Deletions().Count();
    account_.Settle();
  }
  return false;
}

void DeletionPass::List(const std::vector<colMails::Message>& messages) {
  Pop3Session::DeletionList list;
  for (const colMails::Message& message : messages) {
    list.Add(message, colMails::Key(message->Server, message->MessageID));
  }
  session_.SetDeletions(std::move(list), data_.mails.CountIn(session_.GetMaildrop()));
}

bool DeletionPass::RunSession() {
  const NumbersAfterDeletion numbers(data_.mails, session_);
  const bool ended = account_.RunSession();
  const Pop3Session::Outcome& outcome = session_.Result();
  if (outcome.quit_sent) RemoveDeleted(outcome.deleted);
  if (outcome.shrunk && !account_.Over()) {
    view_.ShowError(Text(kMailboxChanged), session_.GetLogin().host);
  }
  return ended;
}

void DeletionPass::RemoveDeleted(size_t count) {
  session_.Deletions().ForEach([&](const colMails::Message& message) {
    if (count == 0) return false;
    --count;
    return data_.mails.Remove(colMails::Key(message->Server, message->MessageID));
  });
}

void DeletionPass::RemoveMarkedAndGone() {
  for (const auto& message : data_.mails.MarkedForDeletion(session_.GetMaildrop()).gone) {
    data_.mails.Remove(colMails::Key(message->Server, message->MessageID));
  }
}

}  // namespace vesko
