#include "support/FakePump.h"

#include <algorithm>
#include <stdexcept>

namespace vesko {
namespace {

constexpr int kMostIdleTurns = 10;
constexpr int kMostTurns = 1'000'000;

}  // namespace

void FakePump::RunPending(std::chrono::milliseconds longest_wait) {
  if (++turns > kMostTurns) throw std::logic_error("the run does not end");
  if (on_turn) on_turn(turns);
  if (socket_.DeliverNext()) {
    idle_turns_ = 0;
  } else if (longest_wait.count() > 0) {
    Sleep(longest_wait);
  } else if (++idle_turns_ > kMostIdleTurns) {
    throw std::logic_error("the run spins");
  }
}

void FakePump::Sleep(std::chrono::milliseconds longest_wait) {
  const double end = clock_.now + std::chrono::duration<double>(longest_wait).count();
  clock_.now = std::max(clock_.now, std::min(end, socket_.NextDue()));
  idle_turns_ = 0;
  socket_.DeliverNext();
}

}  // namespace vesko
