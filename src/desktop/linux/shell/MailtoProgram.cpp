#include "desktop/linux/shell/MailtoProgram.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "desktop/linux/shell/IniFile.h"

namespace vesko {
namespace {

constexpr std::string_view kMailto = "x-scheme-handler/mailto";
constexpr std::string_view kEntrySuffix = ".desktop";

std::string Lower(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return text;
}

std::vector<std::string> DataFolders(const ShellFolders& folders) {
  std::vector<std::string> all = {folders.data_home};
  all.insert(all.end(), folders.data_dirs.begin(), folders.data_dirs.end());
  return all;
}

/// The files that associate programs with kinds of links, the most telling first.
std::vector<IniFile> AssociationFiles(const ShellFolders& folders) {
  std::vector<std::string> places = {folders.config_home};
  places.insert(places.end(), folders.config_dirs.begin(), folders.config_dirs.end());
  for (const std::string& data : DataFolders(folders)) places.push_back(data + "/applications");
  std::vector<IniFile> files;
  for (const std::string& place : places) {
    for (const std::string& desktop : folders.desktops) {
      files.push_back(IniFile::Read(place + "/" + Lower(desktop) + "-mimeapps.list"));
    }
    files.push_back(IniFile::Read(place + "/mimeapps.list"));
  }
  return files;
}

std::vector<std::string> MailtoList(const IniFile& file, std::string_view group) {
  return SplitList(file.Get(group, kMailto), ';');
}

/// Names of desktop entries that take mailto links, the most wanted first.
std::vector<std::string> MailtoEntries(const ShellFolders& folders) {
  std::vector<std::string> entries;
  std::set<std::string> removed;
  auto add = [&](const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      if (!removed.contains(name)) entries.push_back(name);
    }
  };
  std::vector<IniFile> files = AssociationFiles(folders);
  for (const IniFile& file : files) add(MailtoList(file, "Default Applications"));
  for (const IniFile& file : files) {
    add(MailtoList(file, "Added Associations"));
    for (std::string& name : MailtoList(file, "Removed Associations")) {
      removed.insert(std::move(name));
    }
  }
  for (const std::string& data : DataFolders(folders)) {
    add(MailtoList(IniFile::Read(data + "/applications/mimeinfo.cache"), "MIME Cache"));
  }
  return entries;
}

/// A desktop entry with the data folder that holds it.
struct Entry {
  std::string data_folder;
  std::string name;
  IniFile file;

  std::string Get(std::string_view key) const { return file.Get("Desktop Entry", key); }
};

/// Folders below "applications" stand in an entry's name with hyphens.
std::optional<Entry> EntryIn(const std::string& data_folder, const std::string& name) {
  std::string path = name;
  for (size_t at = 0;;) {
    IniFile file = IniFile::Read(data_folder + "/applications/" + path);
    if (!file.Groups().empty()) return Entry{data_folder, name, std::move(file)};
    at = path.find('-', at);
    if (at == std::string::npos) return std::nullopt;
    path[at] = '/';
  }
}

/// The first entry of a name counts, even when it only says that the others are gone.
std::optional<Entry> FindEntry(const std::string& name, const ShellFolders& folders) {
  if (!name.ends_with(kEntrySuffix) || name.find('/') != std::string::npos) return std::nullopt;
  for (const std::string& data_folder : DataFolders(folders)) {
    if (auto entry = EntryIn(data_folder, name)) return entry;
  }
  return std::nullopt;
}

/// Undoes the escapes of a text value.
std::string Unescaped(std::string_view text) {
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + 1 == text.size()) {
      plain += text[i];
      continue;
    }
    char c = text[++i];
    plain += c == 's' ? ' ' : c == 't' ? '\t' : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
  }
  return plain;
}

/// Cuts the first word off a command line: its quotes undone, its field codes dropped.
std::string TakeWord(std::string_view& command) {
  std::string word;
  bool quoted = false;
  size_t i = std::min(command.find_first_not_of(' '), command.size());
  for (; i < command.size() && (quoted || command[i] != ' '); ++i) {
    bool has_next = i + 1 < command.size();
    if (command[i] == '"') {
      quoted = !quoted;
    } else if (command[i] == '\\' && quoted && has_next) {
      word += command[++i];
    } else if (command[i] == '%' && has_next) {
      if (command[++i] == '%') word += '%';
    } else {
      word += command[i];
    }
  }
  command.remove_prefix(i);
  return word;
}

std::string_view BaseName(std::string_view path) { return path.substr(path.rfind('/') + 1); }

/// The program word of a command. "env NAME=VALUE ... program" only dresses a program.
std::string ProgramWord(std::string_view command) {
  std::string word = TakeWord(command);
  if (BaseName(word) != "env") return word;
  do {
    word = TakeWord(command);
  } while (word.find('=') != std::string::npos);
  return word.starts_with('-') ? std::string() : word;
}

std::string Resolved(const std::string& program, const ShellFolders& folders) {
  if (program.starts_with('/')) return IsProgram(program) ? program : std::string();
  if (program.empty() || program.find('/') != std::string::npos) return {};
  for (const std::string& folder : folders.program_dirs) {
    if (IsProgram(folder + "/" + program)) return folder + "/" + program;
  }
  return {};
}

std::string ProgramOf(const Entry& entry, const ShellFolders& folders) {
  if (entry.Get("Hidden") == "true") return {};
  std::string try_exec = Unescaped(entry.Get("TryExec"));
  if (!try_exec.empty() && Resolved(try_exec, folders).empty()) return {};
  std::string program = ProgramWord(Unescaped(entry.Get("Exec")));
  if (BaseName(program) != "flatpak") return Resolved(program, folders);
  // Sandboxed programs start by arguments, and each has a program file of its own to do so.
  std::string application = entry.name.substr(0, entry.name.size() - kEntrySuffix.size());
  return Resolved(entry.data_folder.substr(0, entry.data_folder.rfind('/')) + "/bin/" + application,
                  folders);
}

}  // namespace

std::string MailtoProgram(const ShellFolders& folders) {
  for (const std::string& name : MailtoEntries(folders)) {
    auto entry = FindEntry(name, folders);
    std::string program = entry ? ProgramOf(*entry, folders) : std::string();
    if (!program.empty()) return program;
  }
  return {};
}

bool IsProgram(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(path.c_str(), X_OK) == 0;
}

}  // namespace vesko
