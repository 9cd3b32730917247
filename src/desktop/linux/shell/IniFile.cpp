#include "desktop/linux/shell/IniFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace vesko {
namespace {

constexpr size_t kLargestIni = 1 << 20;
constexpr size_t kMostGroups = 1000;

std::string_view Trimmed(std::string_view text) {
  size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

std::string ReadAll(int file, size_t size) {
  std::string content(size, '\0');
  size_t done = 0;
  while (done < size) {
    ssize_t count = read(file, content.data() + done, size - done);
    if (count <= 0) break;
    done += static_cast<size_t>(count);
  }
  content.resize(done);
  return content;
}

}  // namespace

std::string ReadBounded(const std::string& path, size_t limit) {
  int file =
      open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // opening a pipe must not block
  if (file < 0) return {};
  struct stat status;
  std::string content;
  if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) &&
      status.st_size <= static_cast<off_t>(limit)) {
    content = ReadAll(file, static_cast<size_t>(status.st_size));
  }
  close(file);
  return content;
}

std::vector<std::string> SplitList(std::string_view list, char separator) {
  std::vector<std::string> pieces;
  while (!list.empty()) {
    size_t end = std::min(list.find(separator), list.size());
    if (auto piece = Trimmed(list.substr(0, end)); !piece.empty()) pieces.emplace_back(piece);
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return pieces;
}

IniFile IniFile::Read(const std::string& path) {
  IniFile file;
  Group* group = nullptr;
  for (std::string_view line : SplitList(ReadBounded(path, kLargestIni), '\n')) {
    size_t equals = line.find('=');
    if (line.front() == '[' && line.back() == ']') {
      if (file.groups_.size() == kMostGroups) break;
      group = &file.Named(line.substr(1, line.size() - 2));
    } else if (group && line.front() != '#' && equals != std::string_view::npos) {
      group->emplace(Trimmed(line.substr(0, equals)), Trimmed(line.substr(equals + 1)));
    }
  }
  return file;
}

std::string IniFile::Get(std::string_view group, std::string_view key) const {
  for (const auto& [name, values] : groups_) {
    if (name == group) return ValueOf(values, key);
  }
  return {};
}

IniFile::Group& IniFile::Named(std::string_view name) {
  for (auto& [known, values] : groups_) {
    if (known == name) return values;
  }
  return groups_.emplace_back(name, Group()).second;
}

std::string ValueOf(const IniFile::Group& group, std::string_view key) {
  auto found = group.find(key);
  return found == group.end() ? std::string() : found->second;
}

}  // namespace vesko
