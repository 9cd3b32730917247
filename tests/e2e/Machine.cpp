#include "e2e/Machine.h"

#include <filesystem>

#include "config/mRegistry.h"
#include "config/mmEncrypt.h"

namespace vesko {
namespace {

std::unique_ptr<Desktop> MakeDesktop(const TempFolder& folder) {
  LinuxDesktopOptions options;
  options.user_hive_folder = folder / "user";
  options.machine_hive_folder = folder / "machine";
  options.locale_name = "en_GB";
  options.code_page = kCodePageUtf8;
  return MakeLinuxDesktop(options);
}

Account Stored(const TestAccount& account, const Locale& locale) {
  return {account.user,          u"127.0.0.1", account.user, Encrypt(account.password, locale),
          Decimal(account.port), u"1"};
}

}  // namespace

Machine::Session Machine::NewSession() const { return {MakeDesktop(folder_)}; }

void Machine::SetUp(const std::vector<TestAccount>& accounts) {
  auto desktop = MakeDesktop(folder_);
  const Services& services = desktop->GetServices();
  mRegistry store(services.registry, services.locale, services.shell);
  Configuration configuration;
  store.Load(configuration);
  configuration.Accounts.Clear();
  for (const TestAccount& account : accounts) {
    configuration.AddAccount(Stored(account, services.locale));
  }
  configuration.SoundFile.clear();
  store.Save(configuration);
}

bool Machine::HivesHold(const std::string& bytes) const {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.Path())) {
    if (!entry.is_regular_file()) continue;
    const std::string file = folder_.Read(entry.path().lexically_relative(folder_.Path()).string());
    if (file.find(bytes) != std::string::npos) return true;
  }
  return false;
}

}  // namespace vesko
