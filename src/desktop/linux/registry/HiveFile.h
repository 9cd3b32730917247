#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>
#include <string>

namespace vesko {

/// Which file a path names, and which state of it: by this a connection learns that its file was
/// removed, replaced or changed by others.
struct FileState {
  dev_t device = 0;
  ino_t inode = 0;
  off_t size = 0;
  int64_t modified = 0;  // nanoseconds

  /// The same file, whatever was written to it since.
  bool SameFile(const FileState& other) const {
    return device == other.device && inode == other.inode;
  }
  friend bool operator==(const FileState&, const FileState&) = default;
};

/// Nothing, with the reason in errno, where the path cannot be examined.
std::optional<FileState> StateOf(const std::string& path);

/// The file of a hive, and what SQLite keeps beside it.
class HiveFile {
 public:
  /// A folder without a separator at its end.
  explicit HiveFile(std::string folder);

  /// The database file, which need not exist.
  const std::string& Path() const { return path_; }

  /// The path as the name of a database that nobody changes while it is open.
  std::string ImmutableUri() const;

  /// Creates the folder, those above it and an empty file, each where it is missing and for its
  /// owner only. False, with the reason in errno, where that cannot be done.
  bool Create() const;

  /// Takes the access of everybody else from the folder, the file and its logs, as far as they
  /// belong to this process's user. What cannot be changed stays as it is.
  void CloseToOthers() const;

 private:
  std::string folder_;
  std::string path_;
};

}  // namespace vesko
