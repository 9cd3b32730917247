#include "desktop/linux/LinuxDesktop.h"

#include <QApplication>
#include <QThread>
#include <charconv>

#include "VeskoEx/Host.h"
#include "base/RunTimeError.h"
#include "desktop/common/SteadyClock.h"
#include "desktop/linux/registration/LinuxFolders.h"
#include "desktop/linux/toolkit/DisplayProbe.h"

namespace vesko {
namespace {

constexpr char kCodePageKey[] = "SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage";

/// The process's QApplication, which the first caller makes and nobody ends: Qt takes a second one
/// in a process badly, and what a host still holds may need it to the last. For the same reason
/// the library stays mapped once it was loaded.
void MakeApplication() {
  if (!CanShowWindows()) {
    throw RunTimeError(host::kNoDisplay, u"VeskoEx", u"Windows cannot be shown: no display.");
  }
  static int count = 1;
  static char name[] = "VeskoEx";
  static char* arguments[] = {name, nullptr};
  static auto* application = new QApplication(count, arguments);
  // The host's end is the host's affair; Qt would end its loops with our last window.
  application->setQuitOnLastWindowClosed(false);
}

void RequireApplication() {
  const QCoreApplication* present = QCoreApplication::instance();
  if (present == nullptr) return MakeApplication();
  if (qobject_cast<const QApplication*>(present) == nullptr) {
    throw RunTimeError(host::kNoDisplay, u"VeskoEx", u"The host's Qt application has no widgets.");
  }
  if (present->thread() != QThread::currentThread()) {
    throw RunTimeError(RPC_E_WRONG_THREAD, u"VeskoEx", u"This is not the user-interface thread.");
  }
}

/// The code page that one hive names, or 0.
int NamedCodePage(Registry& registry, int32_t root) {
  RegistryKey key(registry);
  if (key.Open(root, kCodePageKey, kKeyQueryValue) != kStatusSuccess) return 0;
  uint32_t type = 0;
  std::string digits;
  const int32_t status = registry.QueryValue(key.Handle(), "ACP", type, digits);
  int code_page = 0;
  if (status == kStatusSuccess && type == kRegSz) {
    std::from_chars(digits.data(), digits.data() + digits.size(), code_page);
  }
  return code_page;
}

int ChooseCodePage(int asked, Registry& registry) {
  if (asked != 0) return asked;
  // As long as it lives, both hives are waited for only once.
  const auto whole = registry.BeginTransaction(kLocalMachine, TransactionKind::kRead);
  for (int32_t root : {kCurrentUser, kLocalMachine}) {
    const int named = NamedCodePage(registry, root);
    if (named > 0) return named;
  }
  return HostCodePage();
}

std::string Or(const std::string& text, const std::string& fallback) {
  return text.empty() ? fallback : text;
}

class LinuxDesktop : public Desktop {
 public:
  explicit LinuxDesktop(const LinuxDesktopOptions& options)
      : registry_(
            MakeSqliteRegistry(Or(options.user_hive_folder, DefaultFolders().user_hive),
                               Or(options.machine_hive_folder, DefaultFolders().machine_hive))),
        locale_(MakeIcuLocale(ChooseCodePage(options.code_page, *registry_), options.locale_name)),
        sound_(MakeQtSound()),
        shell_(MakeLinuxShell()),
        socket_(MakeQtSocket(*locale_, options.certificate_file)),
        toolkit_(MakeQtToolkit()) {}

  const Services& GetServices() const override { return services_; }
  Toolkit& GetToolkit() override { return *toolkit_; }

 private:
  std::unique_ptr<Registry> registry_;
  std::unique_ptr<Locale> locale_;
  std::unique_ptr<Sound> sound_;
  std::unique_ptr<Shell> shell_;
  std::unique_ptr<Socket> socket_;
  std::unique_ptr<Toolkit> toolkit_;
  SteadyClock clock_;
  Services services_{*locale_, *registry_, *shell_, *sound_, clock_, toolkit_->GetPump(), *socket_};
};

}  // namespace

std::unique_ptr<Desktop> MakeLinuxDesktop(const LinuxDesktopOptions& options) {
  RequireApplication();
  return std::make_unique<LinuxDesktop>(options);
}

}  // namespace vesko
