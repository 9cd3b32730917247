#include "e2e/Machine.h"

#include <stdlib.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "config/mRegistry.h"
#include "config/mmEncrypt.h"

namespace vesko {
namespace {

namespace fs = std::filesystem;

std::unique_ptr<Desktop> MakeDesktop(const fs::path& folder) {
  LinuxDesktopOptions options;
  options.user_hive_folder = folder / "user";
  options.machine_hive_folder = folder / "machine";
  options.locale_name = "en_GB";
  options.code_page = kCodePageUtf8;
  return MakeLinuxDesktop(options);
}

Variant Record(const TestAccount& account, const Locale& locale) {
  return Join({account.user, account.server, account.user, Encrypt(account.password, locale),
               Decimal(account.port), account.save_password ? u"1" : u"0", u""},
              kCrLf);
}

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Machine::Machine() {
  std::string pattern = (fs::temp_directory_path() / "vesko-e2e-XXXXXX").string();
  if (!::mkdtemp(pattern.data())) throw std::runtime_error("no folder: " + pattern);
  folder_ = pattern;
}

Machine::~Machine() {
  std::error_code ignored;
  fs::remove_all(folder_, ignored);
}

Machine::Session::Session(const fs::path& folder) : desktop_(MakeDesktop(folder)) {}

void Machine::SetUp(const std::vector<TestAccount>& accounts, int32_t wait_time) {
  auto desktop = MakeDesktop(folder_);
  mRegistry store(desktop->GetRegistry(), desktop->GetLocale(), desktop->GetShell());
  Configuration configuration;
  store.Load(configuration);
  configuration.Accounts.Clear();
  for (const TestAccount& account : accounts) {
    Variant record = Record(account, desktop->GetLocale());
    configuration.Accounts.Add(record);
  }
  configuration.WaitTime = wait_time;
  configuration.SoundFile.clear();
  store.Save(configuration);
}

bool Machine::HivesHold(const std::string& bytes) const {
  for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
    if (entry.is_regular_file() && ReadFile(entry.path()).find(bytes) != std::string::npos) {
      return true;
    }
  }
  return false;
}

}  // namespace vesko
