#include "pop3/Pop3Session.h"

#include <algorithm>
#include <chrono>

namespace vesko {
namespace {

constexpr TextView kPass = u"PASS";
constexpr size_t kCountStart = 4;  // behind "+OK "

/// The number of messages in the reply to STAT. Raises what ToInt16 does; text that has no space
/// behind the number is not a number.
int16_t ParseCount(const Text& reply) {
  const size_t space = Find(reply, u' ', kCountStart);
  if (space == Text::npos) throw RunTimeError(kTypeMismatch);
  return ToInt16(TextView(reply).substr(kCountStart, space - kCountStart));
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
  host_not_found_ = false;
  buffer_.Clear();
}

void Pop3Session::Quit() {
  interrupted_ = true;
  Send(SessionState::kQuitSent, u"QUIT");
}

bool Pop3Session::HandleArrival() {
  StartWaiting();
  listener_.RefreshStatus();
  Text data = services_.socket.GetData();
  if (data.empty()) return false;
  if (state_ == SessionState::kStopped) return true;
  buffer_.Append(std::move(data));
  HandleText();
  return true;
}

void Pop3Session::HandleText() {
  if (interrupted_) {
    services_.socket.Close();
  } else if (state_ == SessionState::kTopSent) {
    if (buffer_.HasDotLine()) HandleHeader();
  } else if (buffer_.EndsWithCrLf()) {
    HandleReply(buffer_.Take());
  }
}

void Pop3Session::HandlePeerClosed() {
  const auto closing = [this] { return services_.socket.State() == SocketState::kClosing; };
  while (closing() && HandleArrival()) {
  }
  const bool expects_line = !interrupted_ && state_ != SessionState::kTopSent;
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
      return Send(SessionState::kPassSent, u"PASS " + login_.password);
    case SessionState::kPassSent:
      return Send(SessionState::kStatSent, u"STAT");
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
  view_.ShowError(u"POP3 Error: " + reply, login_.host);
}

void Pop3Session::Greeted() {
  view_.ShowProgress(u"Connecting to " + login_.host + u" ...");
  total_ = 0;
  current_ = 0;
  Send(SessionState::kUserSent, u"USER " + login_.user);
}

void Pop3Session::HandleCount(const Text& reply) {
  IgnoreErrors([&] { total_ = ParseCount(reply); });
  if (deletions_.Count() != 0) return StartDeleting();
  if (total_ < 1) return Send(SessionState::kQuitSent, u"QUIT");
  StartFetching();
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
  {
    const Text reply = buffer_.Take();
    listener_.StoreHeader(TopContent(reply), current_);
  }
  if (current_ == total_) return Send(SessionState::kQuitSent, u"QUIT");
  ++current_;
  FetchCurrent();
}

void Pop3Session::StartDeleting() {
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
    Send(SessionState::kDeleSent, u"DELE " + Decimal(deletions_.Item(position)->Index()));
  });
}

void Pop3Session::HandleDeletion() {
  view_.SetProgressValue(current_);
  if (current_ == total_) return Send(SessionState::kQuitSent, u"QUIT");
  ++current_;
  DeleteCurrent();
}

void Pop3Session::Send(SessionState next, Text command) {
  state_ = next;
  view_.ShowCommand(u"Command: " + MaskedCommand(command));
  last_command_ = std::move(command);
  IgnoreErrors([this] { services_.socket.SendData(Text(last_command_).append(kCrLf)); });
  ShowPosition();
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
  host_not_found_ = number == kSocketHostNotFound;
  const Text title = login_.host;
  if (host_not_found_) return view_.ShowError(description, title);
  view_.ShowError(u"Winsock Error: #" + Decimal(number) + u"\r\n" + description, title);
}

}  // namespace vesko
