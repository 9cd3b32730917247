// GoogleTest's own place for what a compiler lacks: here the threads of the standard library, which
// none but GoogleTest's tests of itself need.
#pragma once

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal {

class Notification {
 public:
  void Notify() {}
  void WaitForNotification() {}
};

}  // namespace testing::internal
