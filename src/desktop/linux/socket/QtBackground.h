#pragma once

#include <QObject>
#include <functional>
#include <memory>

#include "desktop/common/Background.h"

namespace vesko {

/// Background on the event loop of a Qt application.
class QtBackground final : public Background {
 public:
  ~QtBackground() override { Cancel(); }

  void Start(std::function<void()> work, std::function<void()> done) override;
  void Cancel() override;

 private:
  struct Task;

  static void Finish(const std::shared_ptr<Task>& task);

  QObject context_;  // receives the end of the work
  std::shared_ptr<Task> task_;
};

}  // namespace vesko
