#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFileInfo>
#include <QProcess>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "base/RunTimeError.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/shell/MailProfile.h"
#include "desktop/linux/shell/MailtoProgram.h"

namespace vesko {
namespace {

constexpr uint32_t kAttributeNormal = 128;

/// A regular file that this user may execute.
bool IsProgram(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
         access(path.c_str(), X_OK) == 0;
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
  explicit LinuxShell(std::vector<std::string> mail_profiles)
      : mail_profiles_(std::move(mail_profiles)),
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
    // QProcess passes a file that the system cannot execute to a shell, unless the process gets an
    // environment of its own.
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
    return QString::fromStdString(MailtoProgram()).toStdU16String();
  }

  std::optional<ForeignAccount> DesktopMailAccount(int32_t k) override {
    if (k == 1) accounts_ = ReadMailAccounts(mail_profiles_);
    if (k < 1 || static_cast<size_t>(k) > accounts_.size()) return std::nullopt;
    return accounts_[static_cast<size_t>(k) - 1];
  }

 private:
  static std::string Bytes(const Text& path) {
    return QFile::encodeName(QString::fromStdU16String(path)).toStdString();
  }

  std::vector<std::string> mail_profiles_;
  Text own_folder_;
  Text own_name_;
  std::vector<ForeignAccount> accounts_;  // as read when the first one was asked for
};

}  // namespace

std::vector<std::string> UserMailProfiles() {
  const char* value = std::getenv("HOME");
  const std::string home = value != nullptr ? value : "";
  return {home + "/.thunderbird", home + "/.var/app/org.mozilla.Thunderbird/.thunderbird",
          home + "/snap/thunderbird/common/.thunderbird"};
}

std::unique_ptr<Shell> MakeLinuxShell(std::vector<std::string> mail_profiles) {
  return std::make_unique<LinuxShell>(std::move(mail_profiles));
}

}  // namespace vesko
