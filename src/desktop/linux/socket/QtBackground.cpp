#include "desktop/linux/socket/QtBackground.h"

#include <QMetaObject>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace vesko {

struct QtBackground::Task {
  std::function<void()> work;
  std::function<void()> done;  // touched by the thread of the event loop alone
  std::mutex mutex;
  QObject* context;  // null when cancelled
};

void QtBackground::Start(std::function<void()> work, std::function<void()> done) {
  Cancel();
  task_ = std::make_shared<Task>();
  task_->work = std::move(work);
  task_->done = std::move(done);
  task_->context = &context_;
  try {
    std::thread([task = task_] {
      task->work();
      Finish(task);
    }).detach();
  } catch (const std::system_error&) {
    Finish(task_);
  }
}

void QtBackground::Cancel() {
  const std::shared_ptr<Task> task = std::exchange(task_, nullptr);
  if (!task) return;
  const std::lock_guard lock(task->mutex);
  task->context = nullptr;
  task->done = nullptr;
}

// The lock keeps the context alive until the call is in its queue. A call that is cancelled there
// finds nothing to do.
void QtBackground::Finish(const std::shared_ptr<Task>& task) {
  const std::lock_guard lock(task->mutex);
  if (!task->context) return;
  auto finished = [task] {
    if (const auto done = std::exchange(task->done, nullptr)) done();
  };
  QMetaObject::invokeMethod(task->context, std::move(finished), Qt::QueuedConnection);
}

}  // namespace vesko
