#pragma once

#include <string>

namespace vesko::demo {

/// A new folder that only this user can enter, with all that comes into it, for the life of the
/// object. An end by Ctrl+C, a closed terminal or a polite kill removes it too: the process then
/// ends at once with 128 and the number of the signal. One in a process.
class ThrowAwayFolder {
 public:
  /// Throws std::system_error when there is no room for it.
  ThrowAwayFolder();
  ~ThrowAwayFolder();
  ThrowAwayFolder(const ThrowAwayFolder&) = delete;
  ThrowAwayFolder& operator=(const ThrowAwayFolder&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace vesko::demo
