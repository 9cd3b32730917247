#pragma once

#include <cstddef>

namespace vesko {

/// Makes the n-th allocation by `new` from its construction on fail, counted from 1, and with
/// kLasting every later one too. Programs that use it have a `new` of their own. One at a time.
class FailingAllocation {
 public:
  enum Kind { kOnce, kLasting };

  FailingAllocation(size_t n, Kind kind);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;

  /// Whether it came to it.
  static bool Happened();
};

}  // namespace vesko
