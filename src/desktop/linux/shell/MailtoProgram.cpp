#include "desktop/linux/shell/MailtoProgram.h"

#include <gio/gdesktopappinfo.h>

#include <memory>
#include <string_view>
#include <vector>

namespace vesko {
namespace {

constexpr char kMailtoType[] = "x-scheme-handler/mailto";

struct Unref {
  void operator()(GAppInfo* application) const { g_object_unref(application); }
};
using Application = std::unique_ptr<GAppInfo, Unref>;

/// The words of a command line without their quotes. Empty where it cannot be parsed.
std::vector<std::string> WordsOf(const char* command) {
  std::vector<std::string> words;
  char** parsed = nullptr;
  if (command == nullptr || !g_shell_parse_argv(command, nullptr, &parsed, nullptr)) return words;
  for (char** word = parsed; *word != nullptr; ++word) words.emplace_back(*word);
  g_strfreev(parsed);
  return words;
}

std::string FileName(std::string_view path) {
  return std::string(path.substr(path.rfind('/') + 1));
}

/// "env NAME=VALUE ... program" gives the program. Options of env change what a word means.
std::string Undressed(const std::vector<std::string>& words) {
  for (size_t i = 1; i < words.size(); ++i) {
    if (words[i].find('=') == std::string::npos) return words[i][0] == '-' ? "" : words[i];
  }
  return {};
}

/// Beside a sandboxed program's entry in ".../share/applications" there is a program in ".../bin"
/// that carries the entry's name and starts it.
std::string SandboxProgram(const std::string& entry_file) {
  std::string_view path = entry_file;
  for (int level = 0; level < 3; ++level) path = path.substr(0, path.rfind('/'));
  std::string name = FileName(entry_file);
  name.erase(name.rfind('.'));
  return std::string(path) + "/bin/" + name;
}

/// Absolute path of a program, searched in the PATH. Empty where there is no executable file.
std::string Resolved(const std::string& program) {
  char* found = program.empty() ? nullptr : g_find_program_in_path(program.c_str());
  std::string path = found != nullptr && g_path_is_absolute(found) ? found : "";
  g_free(found);
  return path;
}

/// The desktop's applications for mailto links, the most wanted first.
std::vector<Application> MailtoApplications() {
  std::vector<Application> applications;
  if (GAppInfo* wanted = g_app_info_get_default_for_type(kMailtoType, FALSE)) {
    applications.emplace_back(wanted);
  }
  GList* all = g_app_info_get_all_for_type(kMailtoType);
  for (GList* entry = all; entry != nullptr; entry = entry->next) {
    applications.emplace_back(G_APP_INFO(entry->data));
  }
  g_list_free(all);
  return applications;
}

}  // namespace

std::string ProgramOf(GAppInfo* application) {
  const std::vector<std::string> words = WordsOf(g_app_info_get_commandline(application));
  if (words.empty()) return {};
  const std::string name = FileName(words[0]);
  if (name == "env") return Resolved(Undressed(words));
  if (name != "flatpak") return Resolved(words[0]);
  const char* entry = g_desktop_app_info_get_filename(G_DESKTOP_APP_INFO(application));
  return entry != nullptr ? Resolved(SandboxProgram(entry)) : std::string();
}

std::string MailtoProgram() {
  for (const Application& application : MailtoApplications()) {
    std::string program = ProgramOf(application.get());
    if (!program.empty()) return program;
  }
  return {};
}

}  // namespace vesko
