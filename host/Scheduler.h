#pragma once

#include <QTimer>
#include <chrono>
#include <functional>

namespace vesko_host {

/// Calls back once after a number of minutes, from the event loop. It waits in steps of a day at
/// the most, because a timer cannot hold the longest waits.
class Scheduler {
 public:
  explicit Scheduler(std::function<void()> due);

  /// Begins the wait again. A number below 1 ends it.
  void Start(int minutes);
  void Stop() { timer_.stop(); }

  /// Time until the call; negative when none is due.
  std::chrono::milliseconds Remaining() const;

 private:
  void Step();

  std::function<void()> due_;
  QTimer timer_;
  std::chrono::milliseconds behind_timer_{0};
};

}  // namespace vesko_host
