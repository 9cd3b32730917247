#include "desktop/linux/registry/Patience.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace vesko {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kPatience{5000};  // a save takes a few; whoever waits is a person
constexpr milliseconds kLongestNap{50};

milliseconds Sleep(milliseconds time) {
  using Clock = std::chrono::steady_clock;
  const auto begin = Clock::now();
  std::this_thread::sleep_for(time);
  return std::chrono::duration_cast<milliseconds>(Clock::now() - begin);
}

}  // namespace

Patience::Patience(PassTime pass_time)
    : pass_time_(pass_time ? std::move(pass_time) : PassTime(Sleep)) {}

void Patience::Enter() {
  if (depth_++ == 0) waited_ = milliseconds{0};
}

void Patience::BeginOperation() {
  if (depth_ == 0) waited_ = milliseconds{0};
}

bool Patience::Wait() {
  if (waited_ >= kPatience) return false;
  const milliseconds nap = std::min(milliseconds{1} + waited_ / 10, kLongestNap);
  waited_ += pass_time_(std::min(nap, kPatience - waited_));
  return true;
}

}  // namespace vesko
