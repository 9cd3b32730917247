#include "pop3/AccountRun.h"

#include <algorithm>
#include <cmath>

#include "config/mmEncrypt.h"

namespace vesko {
namespace {

constexpr int kAnswerNo = 1;  // "&No" among the buttons of the retry question
constexpr double kSecondsBetweenTries = 1;

/// Time after which `seconds` from now are over for certain.
std::chrono::milliseconds JustAfter(double seconds) {
  return std::chrono::milliseconds(static_cast<int64_t>(std::max(seconds, 0.0) * 1000) + 1);
}

int32_t Rounded(double seconds) { return static_cast<int32_t>(std::nearbyint(seconds)); }

bool IsIncomplete(const Account& account) {
  return account.server.empty() || account.user.empty() || account.password.empty();
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
  needs_.view.EnableNext(position < needs_.configuration.Accounts.Count());
}

bool AccountRun::Prepare(bool retry) {
  if (Left() || needs_.socket.State() != SocketState::kClosed) return false;
  if (retry && !ConfirmRetry()) return false;
  Account account = ReadAccount();
  if (IsIncomplete(account) && !Complete(account)) return false;
  Use(account);
  return true;
}

bool AccountRun::WouldAsk() const {
  return !session_.LastCommand().empty() || session_.HostNotFound();
}

bool AccountRun::ConfirmRetry() {
  if (!WouldAsk()) return true;
  const int button = needs_.view.AskRetry(
      u"Checking mail is failed on " + Quoted(session_.GetLogin().host) + u".\r\n" +
          u"Last command was " + Quoted(MaskedCommand(session_.LastCommand())) + u".\r\n" +
          u"Try again ? \r\n",
      u"Quarnel");
  return button != kAnswerNo && !Left();
}

Account AccountRun::ReadAccount() const {
  Account account;
  IgnoreErrors([&] { account = needs_.configuration.AccountAt(position_); });
  return account;
}

Text AccountRun::DecryptedOrEmpty(const Text& scrambled) const {
  Text plain;
  IgnoreErrors([&] { plain = Decrypt(scrambled, needs_.locale); });
  return plain;
}

bool AccountRun::Complete(Account& account) {
  Credentials typed{account.server, account.user, DecryptedOrEmpty(account.password),
                    account.SavesPassword()};
  if (!needs_.view.AskCredentials(typed) || Left()) return false;
  account.server = typed.server;
  account.user = typed.user;
  IgnoreErrors([&] { account.password = Encrypt(typed.password, needs_.locale); });
  account.save_password = typed.save_password ? u"1" : u"0";
  IgnoreErrors([&] { needs_.configuration.ReplaceAccount(position_, account); });
  account = Account::FromRecord(account.ToRecord());
  return true;
}

void AccountRun::Use(const Account& account) {
  session_.SetLogin(
      {account.server, account.user, DecryptedOrEmpty(account.password), account.PortNumber()});
}

bool AccountRun::RunSession() {
  session_.Begin();
  needs_.socket.Close();
  RunPending();
  if (Left()) return false;
  Connect();
  Wait();
  return session_.State() == SessionState::kQuitSent;
}

void AccountRun::Connect() {
  const Pop3Session::Login& login = session_.GetLogin();
  IgnoreErrors([&] { needs_.socket.SetLocalPort(0); });
  needs_.mails.BeginSession();
  IgnoreErrors([&] { needs_.socket.Connect(login.host, login.port); });
  needs_.view.ShowCommand(u"Command: Connecting to " + login.host);
}

void AccountRun::Wait() {
  session_.StartWaiting();
  while (needs_.socket.State() != SocketState::kClosed && WaitOneTurn()) {
  }
  while (needs_.socket.State() != SocketState::kClosed) {
    RunPending();
    needs_.socket.Close();
  }
}

bool AccountRun::WaitOneTurn() {
  needs_.pump.RunPending(UntilNextDuty());
  RefreshStatus();
  const SocketState state = needs_.socket.State();
  if (state == SocketState::kError || session_.State() == SessionState::kStopped) return false;
  if (state == SocketState::kClosing) {
    session_.HandlePeerClosed();
    return false;
  }
  return session_.Silence() <= needs_.configuration.WaitTime;
}

std::chrono::milliseconds AccountRun::UntilNextDuty() const {
  const double silence = session_.Silence();
  const double next_label = Rounded(silence) + 0.5;
  return JustAfter(std::min<double>(next_label, needs_.configuration.WaitTime) - silence);
}

void AccountRun::RefreshStatus() {
  if (over_) return;
  const int32_t seconds = Rounded(session_.Silence());
  if (seconds != last_shown_seconds_) {
    last_shown_seconds_ = seconds;
    needs_.view.ShowTime(Decimal(seconds) + u" seconds");
  }
  const Text& host = session_.GetLogin().host;
  switch (needs_.socket.State()) {
    case SocketState::kConnectionPending:
      return needs_.view.ShowProgress(u"Connection pending ...");
    case SocketState::kResolvingHost:
      return needs_.view.ShowProgress(u"Resolving host " + Quoted(host) + u" ...");
    case SocketState::kConnecting:
      return needs_.view.ShowProgress(u"Connecting " + Quoted(host) + u" ...");
    case SocketState::kClosing:
      return needs_.view.ShowProgress(u"Closing connection to " + Quoted(host) + u" ...");
    default:
      return;
  }
}

void AccountRun::Settle() {
  needs_.socket.Close();
  RunPending();
  if (WouldAsk()) return;
  const double end = needs_.clock.Seconds() + kSecondsBetweenTries;
  for (double now = needs_.clock.Seconds(); now < end && !Left(); now = needs_.clock.Seconds()) {
    needs_.pump.RunPending(JustAfter(end - now));
  }
}

void AccountRun::Skip() {
  if (over_) return;
  skipped_ = true;
  RunPending();
  if (needs_.socket.State() == SocketState::kConnected) {
    LogOut();
  } else {
    needs_.socket.Close();
  }
  RunPending();
}

void AccountRun::LogOut() {
  session_.Stop();
  RunPending();
  // Another press of a button may have come in between and done the rest.
  if (over_ || session_.State() != SessionState::kStopped) return;
  session_.Quit();
}

}  // namespace vesko
