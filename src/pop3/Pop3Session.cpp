#include "pop3/Pop3Session.h"

#include <algorithm>
#include <chrono>

#include "base/Ascii.h"

namespace vesko {
namespace {

constexpr TextView kPass = u"PASS";
constexpr size_t kCountStart = 4;  // after "+OK "

/// The number of messages in the reply to STAT. Raises what ToInt16 does, and type mismatch if no
/// space follows the number.
int16_t ParseCount(const Text& reply) {
  const size_t space = Find(reply, u' ', kCountStart);
  if (space == Text::npos) throw RunTimeError(kTypeMismatch);
  return ToInt16(TextView(reply).substr(kCountStart, space - kCountStart));
}

bool EqualLetters(char16_t a, char16_t b) { return AsciiLower(a) == AsciiLower(b); }

/// The text with every occurrence of a secret replaced by asterisks, in capitals or not: some
/// servers repeat the command that they refuse.
Text Masked(Text text, const Text& secret) {
  if (secret.empty()) return text;
  for (auto at = text.begin(); at != text.end();) {
    at = std::search(at, text.end(), secret.begin(), secret.end(), EqualLetters);
    if (at != text.end()) at = std::fill_n(at, secret.size(), u'*');
  }
  return text;
}

}  // namespace

Text MaskedCommand(const Text& command) {
  if (!Contains(command, kPass)) return command;
  const size_t shown = kPass.size() + 1;
  return u"PASS " + Text(command.size() - std::min(command.size(), shown), u'*');
}

void Pop3Session::Begin() {
  state_ = SessionState::kConnecting;
  interrupted_ = false;
  awaits_deletion_ = false;
  outcome_ = {};
  buffer_.Clear();
  reply_start_ = 0;
}

void Pop3Session::SetDeletions(DeletionList list, int32_t known_count) {
  deletions_ = std::move(list);
  known_count_ = known_count;
}

void Pop3Session::Quit() {
  interrupted_ = true;
  SendQuit();
}

void Pop3Session::SendQuit() {
  if (Send(SessionState::kQuitSent, u"QUIT")) outcome_.quit_sent = true;
}

bool Pop3Session::HandleArrival() {
  StartWaiting();
  on_arrival();
  Text data = services_.socket.GetData();
  if (data.empty()) return false;
  buffer_.Append(std::move(data));
  if (IsTooLong()) {
    RejectTooLong();
  } else {
    HandleText();
  }
  return true;
}

void Pop3Session::HandleText() {
  if (interrupted_ || state_ == SessionState::kStopped) {
    HandleInterrupted();
  } else if (state_ == SessionState::kTopSent) {
    if (buffer_.HasDotLine()) HandleHeader();
  } else if (buffer_.EndsWithCrLf()) {
    HandleReply(TakeReply());
  }
}

bool Pop3Session::IsTooLong() const {
  return services_.socket.BytesReceived() - reply_start_ > kLongestReply;
}

Text Pop3Session::TakeReply() {
  reply_start_ = services_.socket.BytesReceived();
  return buffer_.Take();
}

// Only the reply to a DELE still matters, because the logout makes the deletion final.
void Pop3Session::HandleInterrupted() {
  if (awaits_deletion_ && !buffer_.EndsWithCrLf()) return;
  if (std::exchange(awaits_deletion_, false) && buffer_.StartsWith(u'+')) ++outcome_.deleted;
  TakeReply();
  if (interrupted_) services_.socket.Close();
}

void Pop3Session::HandlePeerClosed() {
  const auto closing = [this] { return services_.socket.State() == SocketState::kClosing; };
  while (closing() && HandleArrival()) {
  }
  const bool expects_line =
      !interrupted_ && state_ != SessionState::kTopSent && state_ != SessionState::kStopped;
  if (closing() && expects_line && buffer_.Size() != 0 && !buffer_.StartsWith(u'+')) {
    Reject(buffer_.Take());
  }
}

void Pop3Session::HandleReply(const Text& reply) {
  if (reply.front() != u'+') return Reject(reply);
  switch (state_) {
    case SessionState::kConnecting:
      return Greeted();
    case SessionState::kUserSent:
      Send(SessionState::kPassSent, u"PASS " + login_.password);
      return;
    case SessionState::kPassSent:
      Send(SessionState::kStatSent, u"STAT");
      return;
    case SessionState::kStatSent:
      return HandleCount(reply);
    case SessionState::kDeleSent:
      return HandleDeletion();
    case SessionState::kQuitSent:
      return services_.socket.Close();
    case SessionState::kTopSent:
    case SessionState::kStopped:
      return;
  }
}

void Pop3Session::Reject(const Text& reply) {
  services_.socket.Close();
  // A refused user name or password is reported by the retry question.
  if (state_ == SessionState::kUserSent || state_ == SessionState::kPassSent) return;
  view_.ShowError(u"POP3 Error: " + Masked(reply, login_.password), login_.host);
}

void Pop3Session::RejectTooLong() {
  services_.socket.Close();
  End();
  if (interrupted_ || state_ == SessionState::kStopped) return;
  view_.ShowError(u"POP3 Error: the reply is too long", login_.host);
}

void Pop3Session::Greeted() {
  view_.ShowProgress(u"Connecting to " + login_.host + u" ...");
  total_ = 0;
  current_ = 0;
  Send(SessionState::kUserSent, u"USER " + login_.user);
}

void Pop3Session::HandleCount(const Text& reply) {
  IgnoreErrors([&] { outcome_.count = total_ = ParseCount(reply); });
  if (deletions_.Count() != 0) return StartDeleting();
  if (total_ >= 1) return StartFetching();
  outcome_.saw_all = outcome_.count.has_value();
  SendQuit();
}

void Pop3Session::StartFetching() {
  view_.SetProgressMaximum(total_);
  view_.SetProgressValue(0);
  ++current_;
  FetchCurrent();
}

void Pop3Session::FetchCurrent() {
  Send(SessionState::kTopSent,
       u"TOP " + Decimal(current_) + u" " + Decimal(configuration_.DownLines));
}

void Pop3Session::HandleHeader() {
  view_.SetProgressValue(current_);
  auto message = std::make_shared<cMessage>(services_.locale);
  // A malformed date ends the parsing, but the message is kept with the fields read so far.
  IgnoreErrors([&] { ReadHeader(*message); });
  message->Server = login_.host;
  message->SetIndex(current_);
  on_message(std::move(message));
  if (current_ == total_) {
    outcome_.saw_all = true;
    return SendQuit();
  }
  ++current_;
  FetchCurrent();
}

void Pop3Session::ReadHeader(cMessage& message) {
  reply_start_ = services_.socket.BytesReceived();
  if (buffer_.IsLong()) {
    return message.CreateFromCompactText(CompactTopContent(buffer_.TakeCompact()));
  }
  const Text reply = buffer_.Take();
  message.CreateFromText(TopContent(reply));
}

void Pop3Session::StartDeleting() {
  outcome_.shrunk = outcome_.count && *outcome_.count < known_count_;
  if (outcome_.shrunk) return SendQuit();
  total_ = static_cast<int32_t>(deletions_.Count());
  view_.SetProgressMaximum(total_);
  view_.SetProgressValue(0);
  ++current_;
  DeleteCurrent();
}

void Pop3Session::DeleteCurrent() {
  state_ = SessionState::kDeleSent;
  IgnoreErrors([this] {
    const auto position = static_cast<size_t>(current_);
    const Text command = u"DELE " + Decimal(deletions_.Item(position)->Index());
    awaits_deletion_ = Send(SessionState::kDeleSent, command);
    outcome_.delete_sent = outcome_.delete_sent || awaits_deletion_;
  });
}

void Pop3Session::HandleDeletion() {
  awaits_deletion_ = false;
  ++outcome_.deleted;
  view_.SetProgressValue(current_);
  if (current_ == total_) return SendQuit();
  ++current_;
  DeleteCurrent();
}

bool Pop3Session::Send(SessionState next, Text command) {
  state_ = next;
  view_.ShowCommand(u"Command: " + MaskedCommand(command));
  last_command_ = std::move(command);
  const bool sent =
      IgnoreErrors([this] { services_.socket.SendData(Text(last_command_).append(kCrLf)); });
  ShowPosition();
  return sent;
}

void Pop3Session::ShowPosition() {
  const bool fetching = state_ == SessionState::kTopSent;
  if (!fetching && state_ != SessionState::kDeleSent) return;
  view_.ShowProgress((fetching ? u"Checking mail " : u"Deleting mail ") + Decimal(current_) + u"/" +
                     Decimal(total_) + u" ... ");
}

void Pop3Session::HandleError(int32_t number, const Text& description) {
  services_.socket.Close();
  services_.pump.RunPending(std::chrono::milliseconds(0));
  if (state_ == SessionState::kStopped) return;
  outcome_.host_not_found = number == kSocketHostNotFound;
  const Text title = login_.host;
  if (outcome_.host_not_found) return view_.ShowError(description, title);
  view_.ShowError(u"Winsock Error: #" + Decimal(number) + u"\r\n" + description, title);
}

}  // namespace vesko
