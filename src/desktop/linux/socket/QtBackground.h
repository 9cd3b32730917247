#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "desktop/common/Background.h"

namespace vesko {

/// Background whose `done` comes by the event loop of a Qt application. Each piece of work has a
/// detached thread: one that never ends costs its stack and nothing else, and does not hold the
/// process up when it exits.
class QtBackground final : public Background {
 public:
  ~QtBackground() override { Cancel(); }

  /// Where no thread can be had, `done` comes without `work`.
  void Start(std::function<void()> work, std::function<void()> done) override;
  void Cancel() override;

 private:
  struct Task;

  /// Runs the end of a task in the event loop, unless it was cancelled meanwhile.
  static void Finish(const std::shared_ptr<Task>& task);

  QObject context_;             // receives the end of the work
  std::shared_ptr<Task> task_;  // shared with the thread; null when there is nothing to come
};

}  // namespace vesko
