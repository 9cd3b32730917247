#pragma once

#include <windows.h>

#include <functional>
#include <memory>

#include "desktop/common/Background.h"
#include "desktop/windows/events/MessageWindow.h"

namespace vesko {

/// Background whose `done` comes with the messages of a thread. Each piece of work has a thread of
/// its own, which keeps the library loaded until it ends.
class WinBackground final : public Background {
 public:
  WinBackground();
  ~WinBackground() override { Cancel(); }

  /// Where no thread can be had, `done` comes without `work`.
  void Start(std::function<void()> work, std::function<void()> done) override;
  void Cancel() override;

 private:
  struct Task;

  /// The thread: runs the work and posts its number to the window.
  static DWORD WINAPI Run(void* task);
  /// Calls done_, unless the work was cancelled or replaced meanwhile.
  void Finished(WPARAM number);

  MessageWindow window_;
  std::shared_ptr<Task> task_;  // shared with the thread; null when there is nothing to come
  std::function<void()> done_;
  WPARAM number_ = 0;  // of the last task; tells its end from that of an earlier one
};

}  // namespace vesko
