#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vesko {

/// Content of a regular file of at most `limit` bytes. Empty for a larger file, for one that cannot
/// be read, and for whatever is no regular file; a pipe is not waited for.
std::string ReadBounded(const std::string& path, size_t limit);

/// Pieces between separators, trimmed of spaces, tabs and carriage returns. Empty pieces are left
/// out.
std::vector<std::string> SplitList(std::string_view list, char separator);

/// A file of groups ("[name]") of "key=value" lines that another program wrote, so it may hold
/// anything: whatever is no such line is skipped. Groups of one name are one group; of two equal
/// keys in it the first counts. Names compare exactly.
class IniFile {
 public:
  using Group = std::map<std::string, std::string, std::less<>>;

  /// A file that is missing, cannot be read or is larger than 1 MiB has no groups. Groups beyond
  /// the first 1000 are not read.
  static IniFile Read(const std::string& path);

  /// Groups in the order of the file.
  const std::vector<std::pair<std::string, Group>>& Groups() const { return groups_; }

  /// The value under a key of a group; empty where there is none.
  std::string Get(std::string_view group, std::string_view key) const;

 private:
  Group& Named(std::string_view name);

  std::vector<std::pair<std::string, Group>> groups_;
};

/// The value under a key of a group, empty where there is none.
std::string ValueOf(const IniFile::Group& group, std::string_view key);

}  // namespace vesko
