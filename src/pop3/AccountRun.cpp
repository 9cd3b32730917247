#include "pop3/AccountRun.h"

#include <algorithm>
#include <cmath>

#include "config/mmEncrypt.h"

namespace vesko {
namespace {

constexpr int kAnswerNo = 1;  // "&No" among the buttons of the retry question
constexpr double kSecondsBetweenTries = 1;

/// A wait after which `seconds` have certainly passed.
std::chrono::milliseconds JustAfter(double seconds) {
  return std::chrono::milliseconds(static_cast<int64_t>(std::max(seconds, 0.0) * 1000) + 1);
}

int32_t Rounded(double seconds) { return static_cast<int32_t>(std::nearbyint(seconds)); }

bool IsControl(char16_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

/// Control characters must not reach the server: a line end would start another command.
bool HoldsControl(const Credentials& credentials) {
  const auto holds = [](const Text& text) { return std::ranges::any_of(text, IsControl); };
  return holds(credentials.server) || holds(credentials.user) || holds(credentials.password);
}

}  // namespace

Text Quoted(const Text& value) { return u"'" + value + u"'"; }

void AccountRun::End() {
  over_ = true;
  session_.Stop();
}

void AccountRun::Start(int32_t position) {
  position_ = position;
  skipped_ = false;
  view_.EnableNext(position < data_.configuration.Accounts.Count());
}

bool AccountRun::Prepare(bool retry) {
  if (Left() || services_.socket.State() != SocketState::kClosed) return false;
  if (retry && !ConfirmRetry()) return false;
  Account account = ReadAccount();
  if (!IsComplete(account) && !Complete(account)) return false;
  Use(account);
  return true;
}

bool AccountRun::WouldAsk() const {
  return !session_.LastCommand().empty() || session_.Result().host_not_found;
}

bool AccountRun::ConfirmRetry() {
  if (!WouldAsk()) return true;
  const int button =
      view_.AskRetry(u"Checking mail is failed on " + Quoted(session_.GetLogin().host) + u".\r\n" +
                         u"Last command was " + Quoted(MaskedCommand(session_.LastCommand())) +
                         u".\r\n" + u"Try again ? \r\n",
                     u"Quarnel");
  return button != kAnswerNo && !Left();
}

Account AccountRun::ReadAccount() const {
  Account account;
  IgnoreErrors([&] { account = data_.configuration.AccountAt(position_); });
  return account;
}

Text AccountRun::DecryptedOrEmpty(const Text& scrambled) const {
  Text plain;
  IgnoreErrors([&] { plain = Decrypt(scrambled, services_.locale); });
  return plain;
}

Credentials AccountRun::CredentialsOf(const Account& account) const {
  return {account.server, account.user, DecryptedOrEmpty(account.password),
          account.SavesPassword()};
}

bool AccountRun::IsComplete(const Account& account) const {
  return !account.server.empty() && !account.user.empty() && !account.password.empty() &&
         !HoldsControl(CredentialsOf(account));
}

bool AccountRun::Complete(Account& account) {
  Credentials typed = CredentialsOf(account);
  do {
    if (!view_.AskCredentials(typed) || Left()) return false;
  } while (HoldsControl(typed));
  account.server = typed.server;
  account.user = typed.user;
  IgnoreErrors([&] { account.password = Encrypt(typed.password, services_.locale); });
  account.save_password = typed.save_password ? u"1" : u"0";
  IgnoreErrors([&] { data_.configuration.ReplaceAccount(position_, account); });
  account = Account::FromRecord(account.ToRecord());
  return true;
}

void AccountRun::Use(const Account& account) {
  session_.SetLogin(
      {account.server, account.user, DecryptedOrEmpty(account.password), account.PortNumber()});
}

bool AccountRun::RunSession() {
  session_.Begin();
  services_.socket.Close();
  RunPending();
  if (Left()) return false;
  Connect();
  Wait();
  session_.End();
  return session_.State() == SessionState::kQuitSent;
}

void AccountRun::Connect() {
  const Pop3Session::Login& login = session_.GetLogin();
  IgnoreErrors([&] { services_.socket.SetLocalPort(0); });
  IgnoreErrors([&] { services_.socket.Connect(login.host, login.port); });
  view_.ShowCommand(u"Command: Connecting to " + login.host);
}

void AccountRun::Wait() {
  session_.StartWaiting();
  while (services_.socket.State() != SocketState::kClosed && WaitOneTurn()) {
  }
  while (services_.socket.State() != SocketState::kClosed) {
    RunPending();
    services_.socket.Close();
  }
}

bool AccountRun::WaitOneTurn() {
  services_.pump.RunPending(UntilNextDuty());
  RefreshStatus();
  const SocketState state = services_.socket.State();
  if (state == SocketState::kError || session_.State() == SessionState::kStopped) return false;
  if (state == SocketState::kClosing) {
    session_.HandlePeerClosed();
    return false;
  }
  return session_.Silence() <= data_.configuration.WaitTime;
}

std::chrono::milliseconds AccountRun::UntilNextDuty() const {
  const double silence = session_.Silence();
  const double next_label = Rounded(silence) + 0.5;
  return JustAfter(std::min<double>(next_label, data_.configuration.WaitTime) - silence);
}

void AccountRun::RefreshStatus() {
  if (over_) return;
  const int32_t seconds = Rounded(session_.Silence());
  if (seconds != last_shown_seconds_) {
    last_shown_seconds_ = seconds;
    view_.ShowTime(Decimal(seconds) + u" seconds");
  }
  const Text& host = session_.GetLogin().host;
  switch (services_.socket.State()) {
    case SocketState::kConnectionPending:
      return view_.ShowProgress(u"Connection pending ...");
    case SocketState::kResolvingHost:
      return view_.ShowProgress(u"Resolving host " + Quoted(host) + u" ...");
    case SocketState::kConnecting:
      return view_.ShowProgress(u"Connecting " + Quoted(host) + u" ...");
    case SocketState::kClosing:
      return view_.ShowProgress(u"Closing connection to " + Quoted(host) + u" ...");
    default:
      return;
  }
}

void AccountRun::Settle() {
  services_.socket.Close();
  RunPending();
  if (WouldAsk()) return;
  const double end = services_.clock.Seconds() + kSecondsBetweenTries;
  for (double now = services_.clock.Seconds(); now < end && !Left();
       now = services_.clock.Seconds()) {
    services_.pump.RunPending(JustAfter(end - now));
  }
}

void AccountRun::Skip() {
  if (over_) return;
  skipped_ = true;
  RunPending();
  if (services_.socket.State() == SocketState::kConnected) {
    LogOut();
  } else {
    services_.socket.Close();
  }
  RunPending();
}

void AccountRun::LogOut() {
  // Stopping a session that is logging out would leave the reply to QUIT unread.
  if (session_.State() == SessionState::kQuitSent) return;
  session_.Stop();
  RunPending();
  // Another button may have been pressed meanwhile and have logged out.
  if (over_ || session_.State() != SessionState::kStopped) return;
  session_.Quit();
}

}  // namespace vesko
