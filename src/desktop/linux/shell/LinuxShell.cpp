#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>

#include <QFileInfo>
#include <QProcess>
#include <cstdlib>
#include <string_view>

#include "base/RunTimeError.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/shell/IniFile.h"
#include "desktop/linux/shell/MailProfile.h"
#include "desktop/linux/shell/MailtoProgram.h"

namespace vesko {
namespace {

constexpr uint32_t kAttributeNormal = 128;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : std::string();
}

/// A folder of the environment, or its default where it says none or a relative one.
std::string FolderOf(const char* name, const std::string& fallback) {
  std::string folder = Environment(name);
  return folder.starts_with('/') ? folder : fallback;
}

std::vector<std::string> FoldersOf(const char* name, const std::string& fallback) {
  std::string list = Environment(name);
  std::vector<std::string> folders = SplitList(list.empty() ? fallback : list, ':');
  std::erase_if(folders, [](const std::string& folder) { return !folder.starts_with('/'); });
  for (std::string& folder : folders) {
    while (folder.size() > 1 && folder.ends_with('/')) folder.pop_back();
  }
  return folders;
}

/// The file that this code was loaded from: a library, or the program itself.
QFileInfo OwnFile() {
  static const char here = 0;
  Dl_info info;
  link_map* map = nullptr;
  bool found = dladdr1(&here, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) != 0;
  bool library = found && map && map->l_name && *map->l_name;
  QString path = library ? QString::fromLocal8Bit(map->l_name) : QStringLiteral("/proc/self/exe");
  return QFileInfo(QFileInfo(path).canonicalFilePath());
}

bool HasNul(const Text& path) { return path.find(u'\0') != Text::npos; }

class LinuxShell : public Shell {
 public:
  explicit LinuxShell(ShellFolders folders)
      : folders_(std::move(folders)),
        own_folder_(OwnFile().absolutePath().toStdU16String()),
        own_name_(OwnFile().baseName().toStdU16String()) {}

  std::optional<uint32_t> FileAttributes(const Text& path) override {
    struct stat status;
    if (HasNul(path) || stat(Bytes(path).c_str(), &status) != 0) return std::nullopt;
    return S_ISDIR(status.st_mode) ? kAttributeDirectory : kAttributeNormal;
  }

  void Start(const Text& program) override {
    QProcess process;
    process.setProgram(QFileInfo(QString::fromStdU16String(program)).absoluteFilePath());
    // With an environment of its own the program is executed as it is; without one, a file that
    // the system cannot execute would be given to a shell.
    process.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    bool startable = !HasNul(program) && IsProgram(Bytes(program));
    if (!startable || !process.startDetached()) throw RunTimeError(kFileNotFound);
  }

  Text OwnFolder() override { return own_folder_; }
  Text OwnName() override { return own_name_; }
  char16_t PathSeparator() const override { return u'/'; }

  Text DesktopMailClient() override {
    return QString::fromStdString(MailtoProgram(folders_)).toStdU16String();
  }

  std::optional<ForeignAccount> DesktopMailAccount(int32_t k) override {
    if (k == 1) accounts_ = ReadMailAccounts(folders_.mail_profiles);
    if (k < 1 || static_cast<size_t>(k) > accounts_.size()) return std::nullopt;
    return accounts_[static_cast<size_t>(k) - 1];
  }

 private:
  static std::string Bytes(const Text& path) {
    return QFile::encodeName(QString::fromStdU16String(path)).toStdString();
  }

  ShellFolders folders_;
  Text own_folder_;
  Text own_name_;
  std::vector<ForeignAccount> accounts_;  // of the last time that the first one was asked for
};

}  // namespace

ShellFolders UserShellFolders() {
  std::string home = Environment("HOME");
  ShellFolders folders;
  folders.config_home = FolderOf("XDG_CONFIG_HOME", home + "/.config");
  folders.data_home = FolderOf("XDG_DATA_HOME", home + "/.local/share");
  folders.config_dirs = FoldersOf("XDG_CONFIG_DIRS", "/etc/xdg");
  folders.data_dirs = FoldersOf("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
  folders.program_dirs = FoldersOf("PATH", "/usr/local/bin:/usr/bin:/bin");
  folders.desktops = SplitList(Environment("XDG_CURRENT_DESKTOP"), ':');
  folders.mail_profiles = {home + "/.thunderbird",
                           home + "/.var/app/org.mozilla.Thunderbird/.thunderbird",
                           home + "/snap/thunderbird/common/.thunderbird"};
  return folders;
}

std::unique_ptr<Shell> MakeLinuxShell(const ShellFolders& folders) {
  return std::make_unique<LinuxShell>(folders);
}

}  // namespace vesko
