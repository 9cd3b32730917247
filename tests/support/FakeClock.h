#pragma once

#include "platform/Clock.h"

namespace vesko {

/// Time as the test sets it.
class FakeClock : public Clock {
 public:
  double Seconds() const override { return now; }

  double now = 1000;
};

}  // namespace vesko
