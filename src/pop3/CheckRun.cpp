#include "pop3/CheckRun.h"

#include <utility>

#include "message/cMessage.h"
#include "pop3/AccountRun.h"
#include "pop3/DeletionPass.h"
#include "pop3/Pop3Session.h"

namespace vesko {

class CheckRun::Impl : public Pop3Session::Listener {
 public:
  Impl(const Services& services, SharedData& data, ProgressView& view)
      : services_(services),
        data_(data),
        view_(view),
        session_(services, data.configuration, view, *this),
        account_(services, data, view, session_) {
    services_.socket.on_data_arrival = [this] { session_.HandleArrival(); };
    services_.socket.on_error = [this](int32_t number, const Text& description) {
      session_.HandleError(number, description);
    };
  }

  ~Impl() override {
    services_.socket.Close();
    services_.socket.on_data_arrival = nullptr;
    services_.socket.on_error = nullptr;
  }

  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  void Prepare() { started_ = false; }

  void Activate() {
    if (std::exchange(started_, true)) return;
    account_.Open();
    DeletionPass(data_, view_, session_, account_).Run();
    CheckAllAccounts();
  }

  void Next() { account_.Skip(); }

  void Cancel() {
    account_.Skip();
    Unload();
  }

  void WindowUnloaded() { account_.End(); }

  bool Cancelled() const { return session_.State() == SessionState::kStopped; }
  bool NewMail() const { return data_.mails.AnyUnread(); }

  void RefreshStatus() override { account_.RefreshStatus(); }
  void StoreHeader(TextView text, int32_t number) override;

 private:
  void Unload();
  void CheckAllAccounts();
  void CheckAccount(int32_t position);
  bool RunSession();

  const Services& services_;
  SharedData& data_;
  ProgressView& view_;
  Pop3Session session_;
  AccountRun account_;
  bool started_ = false;
};

void CheckRun::Impl::Unload() {
  if (account_.Over()) return;
  account_.End();
  view_.UnloadWindow();
}

void CheckRun::Impl::CheckAllAccounts() {
  const int32_t accounts = data_.configuration.Accounts.Count();
  for (int32_t i = 1; i <= accounts && !account_.Over(); ++i) CheckAccount(i);
  if (account_.Over()) return;
  view_.ShowProgress(Decimal(static_cast<int64_t>(data_.mails.Count())) +
                     u" are in the mail boxes !!!");
  Unload();
}

void CheckRun::Impl::CheckAccount(int32_t position) {
  account_.Start(position);
  for (bool retry = false; account_.Prepare(retry); retry = true) {
    const Text host = Quoted(session_.GetLogin().host);
    view_.ShowCaption(u"Checking mail box of " + host + u" ...");
    view_.ShowProgress(u"Connecting " + host + u" ...");
    if (RunSession()) return;
    account_.Settle();
  }
}

bool CheckRun::Impl::RunSession() {
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

void CheckRun::Impl::StoreHeader(TextView text, int32_t number) {
  auto message = std::make_shared<cMessage>(services_.locale);
  // A malformed date ends the parsing, but the message is there and is to be seen.
  IgnoreErrors([&] { message->CreateFromText(text); });
  message->Server = session_.GetLogin().host;
  message->SetIndex(number);
  data_.mails.Add(std::move(message));
}

CheckRun::CheckRun(const Services& services, SharedData& data, ProgressView& view)
    : impl_(std::make_unique<Impl>(services, data, view)) {}
CheckRun::~CheckRun() = default;

void CheckRun::Prepare() { impl_->Prepare(); }
void CheckRun::Activate() { impl_->Activate(); }
void CheckRun::Next() { impl_->Next(); }
void CheckRun::Cancel() { impl_->Cancel(); }
void CheckRun::WindowUnloaded() { impl_->WindowUnloaded(); }
bool CheckRun::Cancelled() const { return impl_->Cancelled(); }
bool CheckRun::NewMail() const { return impl_->NewMail(); }

}  // namespace vesko
