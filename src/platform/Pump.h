#pragma once

#include <chrono>

namespace vesko {

/// Lets pending events run.
class Pump {
 public:
  virtual ~Pump() = default;

  /// Delivers what is pending. When nothing is, sleeps until something comes or `longest_wait` is
  /// over. With 0 it never sleeps. Uses no processor time while it sleeps.
  virtual void RunPending(std::chrono::milliseconds longest_wait) = 0;
};

}  // namespace vesko
