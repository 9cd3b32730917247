#pragma once

#include <pthread.h>

#include <atomic>
#include <functional>
#include <utility>

namespace vesko {

/// Runs work on a thread, which its destructor waits for. (The cross compiler's standard library
/// has no threads, but its system has these.)
class Beside {
 public:
  explicit Beside(std::function<void()> work) : work_(std::move(work)) {
    ::pthread_create(&thread_, nullptr, &Run, this);
  }
  ~Beside() { ::pthread_join(thread_, nullptr); }
  bool Done() const { return done_; }

 private:
  static void* Run(void* self) {
    static_cast<Beside*>(self)->work_();
    static_cast<Beside*>(self)->done_ = true;
    return nullptr;
  }

  std::function<void()> work_;
  std::atomic<bool> done_ = false;
  pthread_t thread_{};
};

}  // namespace vesko
