#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vesko {

/// Content of a regular file of at most `limit` bytes; empty for every other one.
std::string ReadBounded(const std::string& path, size_t limit);

/// Pieces between separators, trimmed of spaces and tabs, empty ones left out.
std::vector<std::string> SplitList(std::string_view list, char separator);

/// A file of groups ("[name]") of "key=value" lines, written by somebody else: whatever is no such
/// line is skipped. The first of two equal keys counts.
class IniFile {
 public:
  using Group = std::map<std::string, std::string, std::less<>>;

  /// A missing, unreadable or huge file has no groups; none has more than 1000.
  static IniFile Read(const std::string& path);

  /// Groups in the order of the file.
  const std::vector<std::pair<std::string, Group>>& Groups() const { return groups_; }

  /// Empty where there is no such value.
  std::string Get(std::string_view group, std::string_view key) const;

 private:
  Group& Named(std::string_view name);

  std::vector<std::pair<std::string, Group>> groups_;
};

/// The value under a key of a group, empty where there is none.
std::string ValueOf(const IniFile::Group& group, std::string_view key);

}  // namespace vesko
