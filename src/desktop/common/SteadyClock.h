#pragma once

#include <chrono>

#include "platform/Clock.h"

namespace vesko {

/// The system's monotonic clock. Setting the time of day does not move it.
class SteadyClock final : public Clock {
 public:
  double Seconds() const override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
  }
};

}  // namespace vesko
