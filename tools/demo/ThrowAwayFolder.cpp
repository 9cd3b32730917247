#include "demo/ThrowAwayFolder.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <thread>

namespace vesko::demo {
namespace {

sigset_t EndingSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&signals, signal);
  return signals;
}

void Remove(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove_all(path, ignored);
}

std::string NewFolder() {
  std::string path = (std::filesystem::temp_directory_path() / "veskoex-demo-XXXXXX").string();
  if (!mkdtemp(path.data())) throw std::system_error(errno, std::generic_category(), path);
  return path;
}

}  // namespace

ThrowAwayFolder::ThrowAwayFolder() {
  // Blocked for all threads that come later; one of them takes the signals in peace, where files
  // may be removed as in any code.
  const sigset_t signals = EndingSignals();
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  path_ = NewFolder();
  std::thread([signals, path = path_] {
    int signal = 0;
    sigwait(&signals, &signal);
    Remove(path);
    _exit(128 + signal);
  }).detach();
}

ThrowAwayFolder::~ThrowAwayFolder() { Remove(path_); }

}  // namespace vesko::demo
