#pragma once

#include <windows.h>

#include <functional>
#include <memory>

#include "desktop/windows/events/MessageWindow.h"

namespace vesko {

/// One piece of work that may block, done beside the thread of the windows. May be cancelled and
/// started anew at any time, from within `done` too; must not be destroyed there.
class Background {
 public:
  Background();
  ~Background() { Cancel(); }
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  /// Runs `work` on a thread of its own, then `done` by the message pump of the thread that made
  /// this object. What both share is theirs to own, for cancelled work may go on for a while.
  /// Where there is no thread to be had, `done` comes without `work`. What was started before is
  /// cancelled.
  void Start(std::function<void()> work, std::function<void()> done);

  /// `done` will not come.
  void Cancel();

 private:
  struct Task;

  static DWORD WINAPI Run(void* task);
  void Finished(WPARAM number);

  MessageWindow window_;
  std::shared_ptr<Task> task_;
  std::function<void()> done_;
  WPARAM number_ = 0;  // of the last task; tells its end from that of an earlier one
};

}  // namespace vesko
