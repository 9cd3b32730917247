#include "demo/ThrowAwayFolder.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>
#include <thread>

namespace vesko::demo {
namespace {

int ending_pipe[2];

void PassOn(int signal) {
  const char number = static_cast<char>(signal);
  if (write(ending_pipe[1], &number, 1) != 1) _exit(128 + signal);
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

// A signal handler must not remove files, so it wakes a thread that does.
void RemoveOnSignal(const std::string& path) {
  if (pipe2(ending_pipe, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "pipe");
  }
  std::thread([path] {
    char number = 0;
    while (read(ending_pipe[0], &number, 1) != 1) continue;
    Remove(path);
    _exit(128 + number);
  }).detach();
  for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    action.sa_handler = PassOn;
    action.sa_flags = SA_RESTART;
    sigaction(signal, &action, nullptr);
  }
  std::signal(SIGPIPE, SIG_IGN);  // the program goes on when nobody reads its output
}

}  // namespace

ThrowAwayFolder::ThrowAwayFolder() : path_(NewFolder()) { RemoveOnSignal(path_); }

ThrowAwayFolder::~ThrowAwayFolder() { Remove(path_); }

}  // namespace vesko::demo
