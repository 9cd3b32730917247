#pragma once

#include <QTimer>
#include <chrono>
#include <functional>

namespace vesko_host {

/// Calls back once when a number of minutes is over. Sleeps in between; waits longer than a timer
/// can hold are taken in steps.
class Scheduler {
 public:
  explicit Scheduler(std::function<void()> due);

  /// Starts the waiting anew; below 1 it ends.
  void Start(int minutes);
  void Stop() { timer_.stop(); }

  /// Time to the next call; negative when there will be none.
  std::chrono::milliseconds Remaining() const;

 private:
  void Step();

  std::function<void()> due_;
  QTimer timer_;
  std::chrono::milliseconds behind_timer_{0};
};

}  // namespace vesko_host
