#pragma once

#include <chrono>

#include "desktop/linux/LinuxDesktop.h"

namespace vesko {

/// How long the hives of a registry are waited for while other processes hold them: five seconds
/// for each operation, or for all of them together between Enter and Leave. Both hives share it.
class Patience {
 public:
  /// An empty function means to sleep.
  explicit Patience(PassTime pass_time);

  /// The beginning and end of what is waited for together. Pairs nest; the outermost one counts.
  void Enter();
  void Leave() { --depth_; }

  /// To be called at the beginning of every operation.
  void BeginOperation();

  /// Lets some time pass, a few milliseconds at first and up to fifty later. False, at once, when
  /// all is used up.
  bool Wait();

 private:
  PassTime pass_time_;
  std::chrono::milliseconds waited_{0};
  int depth_ = 0;
};

}  // namespace vesko
