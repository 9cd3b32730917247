#pragma once

#include <chrono>

#include "platform/Clock.h"

namespace vesko {

/// The system's monotonic clock, by which both ports measure. Setting the time of day does not move
/// it. It may stand still while the machine sleeps, so a wait is never over because of a sleep.
class SteadyClock final : public Clock {
 public:
  double Seconds() const override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
  }
};

}  // namespace vesko
