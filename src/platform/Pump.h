#pragma once

#include <chrono>

namespace vesko {

/// The event loop of the user-interface thread, turned by hand. Events of sockets, windows and
/// timers are delivered only from within RunPending, or while a modal window is shown.
class Pump {
 public:
  virtual ~Pump() = default;

  /// Delivers all pending events. When there are none, sleeps until one comes or `longest_wait` is
  /// over; with 0 it never sleeps. Uses no processor time while it sleeps. An event may end the
  /// caller's work or call RunPending itself, so the caller must look at its state afterwards.
  virtual void RunPending(std::chrono::milliseconds longest_wait) = 0;
};

}  // namespace vesko
