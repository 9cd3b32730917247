#include "desktop/windows/events/WinBackground.h"

#include <utility>

namespace vesko {
namespace {

constexpr UINT kFinished = WM_APP;

// Adds a reference to the library that holds this code, which keeps it loaded.
HMODULE TakeThisModule() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                     reinterpret_cast<LPCWSTR>(&TakeThisModule), &module);
  return module;
}

}  // namespace

struct WinBackground::Task {
  std::function<void()> work;
  WPARAM number;
  HMODULE module;
  SRWLOCK lock = SRWLOCK_INIT;
  HWND window;  // null when cancelled, since the handle of a destroyed window may be used again

  void Tell(HWND whom) {
    AcquireSRWLockExclusive(&lock);
    window = whom;
    ReleaseSRWLockExclusive(&lock);
  }

  void Finish() {
    AcquireSRWLockExclusive(&lock);
    if (window) PostMessageW(window, kFinished, number, 0);
    ReleaseSRWLockExclusive(&lock);
  }
};

WinBackground::WinBackground()
    : window_([this](UINT, WPARAM number, LPARAM) { Finished(number); }) {}

void WinBackground::Start(std::function<void()> work, std::function<void()> done) {
  Cancel();
  done_ = std::move(done);
  task_ = std::make_shared<Task>();
  task_->work = std::move(work);
  task_->number = ++number_;
  task_->module = TakeThisModule();
  task_->window = window_.Get();
  auto* owned = new std::shared_ptr<Task>(task_);
  const HANDLE thread = CreateThread(nullptr, 0, &Run, owned, 0, nullptr);
  if (thread) {
    CloseHandle(thread);
    return;
  }
  delete owned;
  FreeLibrary(task_->module);
  task_->Finish();
}

void WinBackground::Cancel() {
  if (task_) task_->Tell(nullptr);
  task_.reset();
  done_ = nullptr;
}

DWORD WINAPI WinBackground::Run(void* task) {
  auto* owned = static_cast<std::shared_ptr<Task>*>(task);
  const HMODULE module = (*owned)->module;
  (*owned)->work();
  (*owned)->Finish();
  delete owned;
  // The host may have released the library meanwhile: this may be the last code of it to run.
  FreeLibraryAndExitThread(module, 0);
}

void WinBackground::Finished(WPARAM number) {
  if (!task_ || number != number_) return;
  task_.reset();
  const auto done = std::exchange(done_, nullptr);
  done();
}

}  // namespace vesko
