#include "support/ServedSocket.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

constexpr int kMostIdleTurns = 100'000;

}  // namespace

void ServedSocket::Connect(const Text&, int32_t) {
  if (state_ != SocketState::kClosed) throw RunTimeError(kSocketInvalidState);
  state_ = SocketState::kResolvingHost;
  Take(on_line(""));
}

void ServedSocket::SendData(TextView text) {
  if (state_ != SocketState::kConnected) throw RunTimeError(kSocketWrongState);
  sent.push_back(locale_.ToBytes(text));
  const std::string& line = sent.back();
  Take(on_line(line.substr(0, line.find("\r\n"))));
}

// A client that logs out in the middle of a reply gets the rest of it first.
void ServedSocket::Take(ServerTurn turn) {
  turn.bytes.insert(0, turn_.bytes);
  turn_ = std::move(turn);
  due_ = turn_.stays_away ? kNever : clock_.now + turn_.after;
}

Text ServedSocket::GetData() { return std::exchange(arrived_, {}); }

void ServedSocket::Close() {
  state_ = SocketState::kClosed;
  turn_ = {};
  due_ = kNever;
  arrived_.clear();
  received_ = 0;
  decoder_->Reset();
}

void ServedSocket::RunPending(std::chrono::milliseconds longest_wait) {
  if (on_turn) on_turn();
  if (++idle_turns_ > kMostIdleTurns) throw std::logic_error("the run does not end");
  if (Deliver() || longest_wait.count() <= 0) return;
  const double end = clock_.now + std::chrono::duration<double>(longest_wait).count();
  clock_.now = std::max(clock_.now, std::min(end, due_));
  Deliver();
}

bool ServedSocket::Deliver() {
  const bool open = state_ == SocketState::kResolvingHost || state_ == SocketState::kConnected;
  if (!open || clock_.now < due_) return false;
  const bool connects = state_ == SocketState::kResolvingHost;
  if (connects && !(turn_.error != 0 && turn_.bytes.empty())) state_ = SocketState::kConnected;
  if (!turn_.bytes.empty()) {
    DeliverPiece();
  } else if (turn_.error != 0) {
    state_ = SocketState::kError;
    on_error(std::exchange(turn_.error, 0), u"The connection failed.");
  } else if (turn_.closes) {
    state_ = SocketState::kClosing;
    on_data_arrival();
  } else {
    due_ = kNever;
    return connects;
  }
  idle_turns_ = 0;
  return true;
}

void ServedSocket::DeliverPiece() {
  const std::string_view left = turn_.bytes;
  const size_t size = piece ? std::clamp<size_t>(piece(left), 1, left.size()) : left.size();
  arrived_ += decoder_->Decode(left.substr(0, size));
  received_ += size;
  turn_.bytes.erase(0, size);
  on_data_arrival();
}

}  // namespace vesko
