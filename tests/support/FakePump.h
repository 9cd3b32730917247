#pragma once

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "platform/Pump.h"
#include "support/FakeClock.h"
#include "support/ScriptedSocket.h"

namespace vesko {

/// A pump that sleeps by moving the clock. It throws what no one catches when it is asked not to
/// sleep over and over while nothing happens, and when a run does not come to an end.
class FakePump : public Pump {
 public:
  FakePump(FakeClock& clock, ScriptedSocket& socket) : clock_(clock), socket_(socket) {}

  void RunPending(std::chrono::milliseconds longest_wait) override {
    if (++turns > 1'000'000) throw std::logic_error("the run does not end");
    if (on_turn) on_turn(turns);
    if (socket_.DeliverNext()) {
      idle_turns_ = 0;
    } else if (longest_wait.count() > 0) {
      const double end = clock_.now + std::chrono::duration<double>(longest_wait).count();
      clock_.now = std::max(clock_.now, std::min(end, socket_.NextDue()));
      idle_turns_ = 0;
      socket_.DeliverNext();
    } else if (++idle_turns_ > 10) {
      throw std::logic_error("the run spins");
    }
  }

  int turns = 0;
  std::function<void(int turn)> on_turn;  // what the user does, before anything else happens

 private:
  FakeClock& clock_;
  ScriptedSocket& socket_;
  int idle_turns_ = 0;  // that neither slept nor delivered anything, one after another
};

}  // namespace vesko
