#include "support/ScriptedSocket.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

Text Ok(const Text& rest = {}) { return u"+OK" + rest + u"\r\n"; }

}  // namespace

Script operator+(Script first, const Script& then) {
  first.steps.insert(first.steps.end(), then.steps.begin(), then.steps.end());
  return first;
}

Script Server(Text text) { return {{{Step::Kind::kServer, std::move(text)}}}; }
Script Client(Text line) { return {{{Step::Kind::kClient, std::move(line)}}}; }
Script PeerCloses() { return {{{Step::Kind::kPeerCloses}}}; }
Script Fails(int32_t number, Text description) {
  return {{{Step::Kind::kFails, std::move(description), number}}};
}
Script After(double seconds) { return {{{Step::Kind::kAfter, {}, 0, seconds}}}; }

Script Login() {
  return Server(Ok(u" ready")) + Client(u"USER ann") + Server(Ok()) + Client(u"PASS secret") +
         Server(Ok());
}

Script Stat(const Text& reply) { return Client(u"STAT") + Server(Ok(u" " + reply)); }

Script Top(int number, const Text& content, int lines) {
  return Client(u"TOP " + Decimal(number) + u" " + Decimal(lines)) +
         Server(Ok() + content + u".\r\n");
}

Script Dele(int number) { return Client(u"DELE " + Decimal(number)) + Server(Ok()); }

Script Quit() { return Client(u"QUIT") + Server(Ok(u" bye")); }

Script Mailbox(const std::vector<Text>& contents) {
  Script script = Login() + Stat(Decimal(static_cast<int64_t>(contents.size())) + u" 999");
  int number = 0;
  for (const Text& content : contents) script = script + Top(++number, content);
  return script + Quit();
}

std::string Narrow(TextView text) {
  std::string bytes;
  for (char16_t c : text) bytes += c < 128 ? static_cast<char>(c) : '?';
  return bytes;
}

void ScriptedSocket::Connect(const Text& host, int32_t port) {
  if (state_ != SocketState::kClosed) throw RunTimeError(kSocketInvalidState);
  if (failing_connects > 0) {
    --failing_connects;
    throw RunTimeError(kSocketInvalidState);
  }
  if (conversations.empty()) throw std::logic_error("connects once more than expected");
  connected.push_back(Narrow(host) + ":" + std::to_string(port));
  steps_.assign(conversations.front().steps.begin(), conversations.front().steps.end());
  conversations.pop_front();
  delivered_ = 0;
  delivered_of_step_ = 0;
  state_ = SocketState::kResolvingHost;
}

void ScriptedSocket::SendData(TextView text) {
  if (sends_++ == failing_send || state_ != SocketState::kConnected) {
    throw RunTimeError(kSocketWrongState);
  }
  if (!text.ends_with(u"\r\n")) faults.push_back("no line end: " + Narrow(text));
  sent.push_back(Narrow(text.substr(0, text.size() - std::min<size_t>(text.size(), 2))));
  const Step* step = Next();
  if (step && step->kind == Step::Kind::kClient && Narrow(step->text) == sent.back()) {
    steps_.pop_front();
  } else {
    faults.push_back("out of turn: " + sent.back());
  }
}

Text ScriptedSocket::GetData() { return std::exchange(arrived_, {}); }

void ScriptedSocket::Close() {
  unused_ += steps_.size();
  steps_.clear();
  arrived_.clear();
  due_ = kNever;
  state_ = SocketState::kClosed;
}

size_t ScriptedSocket::Unused() const {
  size_t unused = unused_ + steps_.size();
  for (const Script& script : conversations) unused += script.steps.size();
  return unused;
}

bool ScriptedSocket::DeliverNext() {
  if (state_ == SocketState::kClosed || state_ == SocketState::kError) return false;
  const Step* step = Next();
  if (step && step->kind == Step::Kind::kAfter) return DeliverWait(*step);
  const bool fails = step && step->kind == Step::Kind::kFails;
  if (state_ == SocketState::kResolvingHost && !(fails && step->number == kSocketHostNotFound)) {
    return state_ = SocketState::kConnecting, true;
  }
  if (fails) return FailNow(), true;
  if (state_ == SocketState::kConnecting) return state_ = SocketState::kConnected, true;
  if (!step || step->kind == Step::Kind::kClient) return false;
  if (step->kind == Step::Kind::kPeerCloses) return PeerClosesNow(), true;
  return SendPiece(*step), true;
}

bool ScriptedSocket::DeliverWait(const Step& step) {
  if (due_ == kNever) due_ = clock_.now + step.seconds;
  if (clock_.now < due_) return false;
  due_ = kNever;
  steps_.pop_front();
  return DeliverNext();
}

void ScriptedSocket::SendPiece(const Step& step) {
  const TextView rest = TextView(step.text).substr(delivered_of_step_);
  size_t size = std::min(rest.size(), piece_size);
  if (cut_at > delivered_) size = std::min(size, cut_at - delivered_);
  arrived_ += rest.substr(0, size);
  delivered_ += size;
  delivered_of_step_ += size;
  if (size == rest.size()) {
    delivered_of_step_ = 0;
    steps_.pop_front();
  }
  const Step* next = Next();
  if (closes_with_last_piece && next && next->kind == Step::Kind::kPeerCloses) {
    return PeerClosesNow();
  }
  on_data_arrival();
}

void ScriptedSocket::PeerClosesNow() {
  steps_.pop_front();
  state_ = SocketState::kClosing;
  on_data_arrival();
}

void ScriptedSocket::FailNow() {
  const Step step = steps_.front();
  steps_.pop_front();
  state_ = SocketState::kError;
  on_error(step.number, step.text);
}

}  // namespace vesko
