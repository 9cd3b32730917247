#include "desktop/linux/registry/HiveFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace vesko {
namespace {

constexpr mode_t kOthers = 0077;

/// Creates a folder and those above it, for its owner only.
bool MakeFolders(const std::string& folder) {
  for (size_t end = folder.find('/', 1);; end = folder.find('/', end + 1)) {
    const std::string part = folder.substr(0, end);
    const bool made = mkdir(part.c_str(), 0700) == 0 || errno == EEXIST;
    if (end == std::string::npos) return made;
  }
}

/// Creates an empty file for its owner only where there is none; SQLite gives its logs the same
/// access. A file that exists is not opened, since closing it would drop this process's locks.
bool MakeFile(const std::string& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file < 0) return errno == EEXIST;
  close(file);
  return true;
}

void CloseOne(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0 || status.st_uid != geteuid()) return;
  const mode_t mode = status.st_mode & 07777;
  if ((mode & kOthers) != 0) (void)chmod(path.c_str(), mode & ~kOthers);
}

}  // namespace

std::optional<FileState> StateOf(const std::string& path) {
  struct stat status;
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileState{status.st_dev, status.st_ino, status.st_size,
                   int64_t{status.st_mtim.tv_sec} * 1'000'000'000 + status.st_mtim.tv_nsec};
}

HiveFile::HiveFile(std::string folder)
    : folder_(std::move(folder)), path_(folder_ + "/registry.db") {}

std::string HiveFile::ImmutableUri() const {
  std::string uri = "file:";
  for (char c : path_) {
    if (c == '%' || c == '?' || c == '#') {
      constexpr char kHex[] = "0123456789abcdef";
      uri += '%';
      uri += kHex[static_cast<unsigned char>(c) >> 4];
      uri += kHex[c & 0xF];
    } else {
      uri += c;
    }
  }
  return uri + "?immutable=1";
}

bool HiveFile::Create() const { return MakeFolders(folder_) && MakeFile(path_); }

void HiveFile::CloseToOthers() const {
  CloseOne(folder_);
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) CloseOne(path_ + suffix);
}

}  // namespace vesko
