#pragma once

#include <functional>

#include "platform/Pump.h"
#include "support/FakeClock.h"
#include "support/ScriptedSocket.h"

namespace vesko {

/// A pump that sleeps by moving the clock. It throws what no one catches when it is asked not to
/// sleep over and over while nothing happens, and when a run does not come to an end.
class FakePump : public Pump {
 public:
  FakePump(FakeClock& clock, ScriptedSocket& socket) : clock_(clock), socket_(socket) {}

  void RunPending(std::chrono::milliseconds longest_wait) override;

  int turns = 0;
  std::function<void(int turn)> on_turn;  // what the user does, before anything else happens

 private:
  void Sleep(std::chrono::milliseconds longest_wait);

  FakeClock& clock_;
  ScriptedSocket& socket_;
  int idle_turns_ = 0;  // that neither slept nor delivered anything, one after another
};

}  // namespace vesko
