#pragma once

#include <string>

namespace vesko::demo {

/// A new folder that only this user can enter; the object's end removes it with everything in it.
/// So do SIGINT, SIGHUP and SIGTERM, after which the process ends at once with 128 plus the number
/// of the signal. There may be one in a process.
class ThrowAwayFolder {
 public:
  /// Throws std::system_error where the folder cannot be made.
  ThrowAwayFolder();
  ~ThrowAwayFolder();
  ThrowAwayFolder(const ThrowAwayFolder&) = delete;
  ThrowAwayFolder& operator=(const ThrowAwayFolder&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace vesko::demo
