#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace vesko {

/// Runs one piece of work that may block beside the thread of the event loop. Work can be cancelled
/// and started again at any time, also from within `done`; the object must not be destroyed there.
class Background {
 public:
  Background() = default;
  ~Background() { Cancel(); }
  Background(const Background&) = delete;
  Background& operator=(const Background&) = delete;

  /// Runs `work` on a thread of its own and then `done` by the event loop of the thread that made
  /// this object. Cancelled work runs to its end unattended, even past the end of this object, so
  /// `work` must own everything that it uses. Where no thread can be had, `done` comes without
  /// `work`. Cancels what was started before.
  void Start(std::function<void()> work, std::function<void()> done);

  /// Returns at once; `done` will not come.
  void Cancel();

 private:
  struct Task;

  static void Finish(const std::shared_ptr<Task>& task);

  QObject context_;  // receives the end of the work
  std::shared_ptr<Task> task_;
};

}  // namespace vesko
