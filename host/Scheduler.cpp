#include "Scheduler.h"

#include <algorithm>
#include <utility>

namespace vesko_host {

namespace {
constexpr std::chrono::milliseconds kLongestStep = std::chrono::hours(24);
}

Scheduler::Scheduler(std::function<void()> due) : due_(std::move(due)) {
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::VeryCoarseTimer);
  QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] { Step(); });
}

void Scheduler::Start(int minutes) {
  timer_.stop();
  if (minutes < 1) return;
  behind_timer_ = std::chrono::minutes(minutes);
  Step();
}

std::chrono::milliseconds Scheduler::Remaining() const {
  if (!timer_.isActive()) return std::chrono::milliseconds(-1);
  return timer_.remainingTimeAsDuration() + behind_timer_;
}

void Scheduler::Step() {
  if (behind_timer_.count() == 0) return due_();
  const auto step = std::min(behind_timer_, kLongestStep);
  behind_timer_ -= step;
  timer_.start(step);
}

}  // namespace vesko_host
