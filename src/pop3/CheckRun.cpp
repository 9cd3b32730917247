#include "pop3/CheckRun.h"

#include <new>
#include <utility>

#include "pop3/DeletionPass.h"

namespace vesko {

CheckRun::CheckRun(const Services& services, SharedData& data, ProgressView& view)
    : services_(services),
      data_(data),
      view_(view),
      session_(services, data.configuration, view),
      account_(services, data, view, session_) {
  session_.on_arrival = [this] { account_.RefreshStatus(); };
  session_.on_message = [this](colMails::Message message) { data_.mails.Add(std::move(message)); };
}

// Everything that calls into a run goes through here, because an exception must not pass through an
// event loop.
void CheckRun::Contain(const std::function<void()>& step) {
  try {
    step();
  } catch (const std::bad_alloc&) {
    services_.socket.Close();
    session_.End();  // frees most of the memory, so that there is enough to close the window
    try {
      Unload();
    } catch (const std::bad_alloc&) {
    }
  }
}

void CheckRun::Activate() {
  if (std::exchange(started_, true)) return;
  Contain([this] {
    account_.Open();
    TakeSocket();
    DeletionPass(data_, view_, session_, account_).Run();
    CheckAllAccounts();
  });
  LeaveSocket();
}

void CheckRun::TakeSocket() {
  services_.socket.on_data_arrival = [this] { Contain([this] { session_.HandleArrival(); }); };
  services_.socket.on_error = [this](int32_t number, const Text& description) {
    Contain([&] { session_.HandleError(number, description); });
  };
}

void CheckRun::LeaveSocket() {
  services_.socket.Close();
  services_.socket.on_data_arrival = nullptr;
  services_.socket.on_error = nullptr;
}

void CheckRun::Next() {
  Contain([this] { account_.Skip(); });
}

void CheckRun::Cancel() {
  Contain([this] {
    account_.Skip();
    Unload();
  });
}

void CheckRun::Unload() {
  if (account_.Over()) return;
  account_.End();
  view_.UnloadWindow();
}

void CheckRun::KnowMaildrops() {
  std::vector<Maildrop> maildrops;
  for (int32_t i = 1; i <= data_.configuration.Accounts.Count(); ++i) {
    const Account account = data_.configuration.AccountAt(i);
    maildrops.push_back({account.server, account.PortNumber(), account.user});
  }
  data_.mails.KnowMaildrops(maildrops);
}

void CheckRun::CheckAllAccounts() {
  KnowMaildrops();
  const int32_t accounts = data_.configuration.Accounts.Count();
  for (int32_t i = 1; i <= accounts && !account_.Over(); ++i) CheckAccount(i);
  if (account_.Over()) return;
  view_.ShowProgress(Decimal(static_cast<int64_t>(data_.mails.Count())) +
                     u" are in the mail boxes !!!");
  Unload();
}

void CheckRun::CheckAccount(int32_t position) {
  account_.Start(position);
  for (bool retry = false; account_.Prepare(retry); retry = true) {
    const Text host = Quoted(session_.GetLogin().host);
    view_.ShowCaption(u"Checking mail box of " + host + u" ...");
    view_.ShowProgress(u"Connecting " + host + u" ...");
    if (RunSession()) return;
    account_.Settle();
  }
}

bool CheckRun::RunSession() {
  const Maildrop maildrop = session_.GetMaildrop();
  data_.mails.BeginSession(maildrop);
  const bool ended = account_.RunSession();
  const Pop3Session::Outcome& outcome = session_.Result();
  if (outcome.saw_all) {
    data_.mails.CompleteSession(*outcome.count);
  } else if (outcome.count && *outcome.count < data_.mails.CountIn(maildrop)) {
    data_.mails.ForgetNumbers(maildrop);
  }
  return ended;
}

}  // namespace vesko
