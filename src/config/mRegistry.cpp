#include "config/mRegistry.h"

#include "config/AccountImport.h"
#include "config/HiveSettings.h"
#include "config/SaveJournal.h"

namespace vesko {
namespace {

constexpr TextView kSettingsKey = u"SOFTWARE\\Quarnel\\Config\\Email Accounts";
constexpr TextView kSoundName = u"Email1.wav";
constexpr TextView kFirstSpamSenders = u"offers@spam.example\r\n@spam.example";
constexpr TextView kFirstSpamSubjects = u"ILOVEYOU\r\nMELISSA";

Account Imported(const ForeignAccount& account) {
  return {.name = account.name,
          .server = account.server,
          .user = account.user,
          .port = Decimal(account.port),
          .save_password = u"0"};
}

}  // namespace

mRegistry::mRegistry(Registry& registry, const Locale& locale, Shell& shell)
    : registry_(registry), locale_(locale), shell_(shell) {}

int32_t mRegistry::Load(Configuration& configuration) {
  // As long as it lives, both hives are waited for only once.
  const auto whole = registry_.BeginTransaction(kLocalMachine, TransactionKind::kRead);
  load_status_ = LoadStored(configuration);
  if (load_status_ != kStatusSuccess) {
    configuration = Configuration();
    configuration.SoundFile = DefaultSound();
  }
  configuration.DefaultEmailClient = DefaultClient();
  return load_status_;
}

int32_t mRegistry::LoadStored(Configuration& configuration) {
  bool found = false;
  int32_t status = LoadHive(kCurrentUser, configuration, found);
  if (status || found) return status;
  const int32_t seeded = Seed();
  for (int32_t root : {kCurrentUser, kLocalMachine}) {
    status = LoadHive(root, configuration, found);
    if (status || found) return status;
  }
  return seeded;
}

int32_t mRegistry::LoadHive(int32_t root, Configuration& configuration, bool& found) {
  const auto one_moment = registry_.BeginTransaction(root, TransactionKind::kRead);
  HiveValues values = ValuesOf(root);
  SaveJournal journal(values, Text(kSettingsKey));
  const HiveSettings& settings = journal.Current();
  found = settings.Exist();
  settings.Load(DefaultSound(), configuration);
  return values.Failure();
}

int32_t mRegistry::Save(const Configuration& configuration) {
  if (load_status_ != kStatusSuccess) return load_status_;
  // As long as both live, both hives are waited for only once.
  const auto user = registry_.BeginTransaction(kCurrentUser, TransactionKind::kWrite);
  const auto machine = registry_.BeginTransaction(kLocalMachine, TransactionKind::kWrite);
  HiveValues user_values = ValuesOf(kCurrentUser);
  HiveValues machine_values = ValuesOf(kLocalMachine);
  const int32_t status = Store(user_values, configuration, *user);
  Store(machine_values, configuration, *machine);
  return status;
}

int32_t mRegistry::Store(HiveValues& values, const Configuration& configuration,
                         RegistryTransaction& transaction) {
  const Text key(kSettingsKey);
  if (registry_.StoresWholeTransactions()) {
    HiveSettings(values, key).Save(configuration);
  } else {
    SaveJournal(values, key).Save(configuration);
  }
  const int32_t status = values.Failure();
  return status ? status : transaction.Commit();
}

int32_t mRegistry::Seed() {
  Configuration first;
  if (int32_t status = FirstSettings(first)) return status;
  const auto transaction = registry_.BeginTransaction(kCurrentUser, TransactionKind::kWrite);
  HiveValues values = ValuesOf(kCurrentUser);
  if (HiveSettings(values, kSettingsKey).Exist()) return kStatusSuccess;  // another was faster
  return Store(values, first, *transaction);
}

int32_t mRegistry::FirstSettings(Configuration& first) {
  HiveValues values = ValuesOf(kCurrentUser);
  while (auto account = ImportAccount(first.Accounts.Count() + 1, values, shell_)) {
    first.AddAccount(Imported(*account));
  }
  first.SoundFile = DefaultSound();
  first.SpamSenders = Split(kFirstSpamSenders, kCrLf);
  first.SpamSubjects = Split(kFirstSpamSubjects, kCrLf);
  return values.Failure();
}

Text mRegistry::DefaultClient() {
  HiveValues values = ValuesOf(kLocalMachine);
  return DefaultMailClient(values, locale_, shell_);
}

Text mRegistry::DefaultSound() const {
  return shell_.OwnFolder() + shell_.PathSeparator() + Text(kSoundName);
}

}  // namespace vesko
