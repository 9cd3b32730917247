#include "config/mRegistry.h"

#include <algorithm>
#include <array>

#include "base/RunTimeError.h"
#include "config/AccountImport.h"
#include "config/cRegistry.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

constexpr TextView kRoot = u"SOFTWARE\\Quarnel\\Config\\Email Accounts";
constexpr TextView kSoundName = u"Email1.wav";
constexpr TextView kFirstSpamSenders = u"offers@spam.example\r\n@spam.example";
constexpr TextView kFirstSpamSubjects = u"ILOVEYOU\r\nMELISSA";

/// A damaged count must not keep the program from starting; lists of accounts hold no more.
constexpr int32_t kMostAccounts = 32767;

/// Values of the main key that are numbers, with the setting behind each.
struct NumberSetting {
  TextView name;
  int32_t Configuration::*setting;
};
constexpr std::array<NumberSetting, 4> kNumberSettings = {{
    {u"Down Lines", &Configuration::DownLines},
    {u"Check Time", &Configuration::CheckInterval},
    {u"Wait Time", &Configuration::WaitTime},
    {u"Manual Checking", &Configuration::ManualChecking},
}};

/// Values of an account's key with the fields that they hold.
struct AccountValue {
  Text Account::*field;
  TextView name;
  uint32_t type;
};
constexpr std::array<AccountValue, 6> kAccountValues = {{
    {&Account::name, u"Account Name", kRegSz},
    {&Account::server, u"POP3 Server", kRegSz},
    {&Account::user, u"POP3 User Name", kRegSz},
    {&Account::password, u"POP3 Password", kRegSz},
    {&Account::port, u"POP3 Port", kRegDword},
    {&Account::save_password, u"Save Password", kRegDword},
}};

Variant DefaultOf(const AccountValue& value) {
  if (value.type == kRegSz) return Text();
  return value.field == &Account::port ? kPop3Port : 0;
}

/// Numbers stored as text end at a NUL.
int32_t NumberOf(const Variant& value) {
  if (auto* text = std::get_if<Text>(&value)) return ToInt32(TrimNull(*text));
  return ToInt32(value);
}

/// One hive's settings under the main key, read and written value by value. What fails is skipped.
class HiveSettings {
 public:
  HiveSettings(cRegistry& registry, int32_t root) : registry_(registry), root_(root) {}

  bool Exists() const { return KeyExists(Text(kRoot)); }

  Variant Read(TextView name, uint32_t type, const Variant& default_value) const {
    return ReadValue(registry_, root_, Text(kRoot), Text(name), type, default_value);
  }
  void Write(TextView name, uint32_t type, const Variant& value) const {
    WriteValue(registry_, root_, Text(kRoot), Text(name), type, value);
  }

  Account ReadAccount(int32_t n) const {
    Account account;
    for (const AccountValue& value : kAccountValues) {
      IgnoreErrors([&] {
        Variant read = ReadValue(registry_, root_, NumberedKey(kRoot, n), Text(value.name),
                                 value.type, DefaultOf(value));
        account.*value.field = TrimNull(ToText(read));
      });
    }
    return account;
  }

  void WriteAccount(int32_t n, const Account& account) const {
    for (const AccountValue& value : kAccountValues) {
      IgnoreErrors([&] {
        const Text& field = account.*value.field;
        Variant stored = value.type == kRegSz ? Variant(field) : Variant(ToInt32(TextView(field)));
        WriteValue(registry_, root_, NumberedKey(kRoot, n), Text(value.name), value.type, stored);
      });
    }
  }

  /// Deletes the account keys from n on, up to the first gap.
  void DeleteAccountsFrom(int32_t n) const {
    for (; KeyExists(NumberedKey(kRoot, n)); ++n) {
      IgnoreErrors([&] { registry_.DeleteKey(); });
    }
  }

 private:
  bool KeyExists(const Text& key) const {
    registry_.ClassKey = root_;
    registry_.SectionKey = key;
    return registry_.KeyExists();
  }

  cRegistry& registry_;
  int32_t root_;
};

/// Switches off what is no number, and drops the password of every account whose switch is off.
void DropUnsavedPassword(Account& account) {
  if (account.SavesPassword()) return;
  account.save_password = u"0";
  account.password.clear();
}

void LoadValues(const HiveSettings& hive, const Text& default_sound, Configuration& configuration) {
  for (const auto& number : kNumberSettings) {
    int32_t first = Configuration().*number.setting;
    IgnoreErrors([&] {
      configuration.*number.setting = NumberOf(hive.Read(number.name, kRegDword, first));
    });
  }
  auto read_text = [&](TextView name, const Text& default_value) {
    return ToText(hive.Read(name, kRegExpandSz, default_value));
  };
  IgnoreErrors([&] { configuration.SoundFile = read_text(u"Sound File", default_sound); });
  IgnoreErrors([&] { configuration.SpamSenders = Split(read_text(u"Spam Sender", {}), kCrLf); });
  IgnoreErrors([&] { configuration.SpamSubjects = Split(read_text(u"Spam Subject", {}), kCrLf); });
}

void LoadAccounts(const HiveSettings& hive, Configuration& configuration) {
  int32_t count = 0;
  IgnoreErrors([&] { count = NumberOf(hive.Read(u"Account Number", kRegDword, 0)); });
  count = std::min(count, kMostAccounts);
  for (int32_t n = 1; n <= count; ++n) {
    configuration.AddAccount(hive.ReadAccount(n));
  }
}

/// Returns whether the hive has a main key; the settings are replaced either way.
bool LoadHive(const HiveSettings& hive, const Text& default_sound, Configuration& configuration) {
  bool exists = hive.Exists();
  configuration.Accounts.Clear();
  configuration.SpamSenders.clear();
  configuration.SpamSubjects.clear();
  LoadValues(hive, default_sound, configuration);
  LoadAccounts(hive, configuration);
  return exists;
}

void SaveValues(const HiveSettings& hive, const Configuration& configuration) {
  hive.Write(u"Account Number", kRegDword, configuration.Accounts.Count());
  for (const auto& [name, setting] : kNumberSettings) {
    hive.Write(name, kRegDword, configuration.*setting);
  }
  hive.Write(u"Sound File", kRegExpandSz, configuration.SoundFile);
  hive.Write(u"Spam Sender", kRegExpandSz, Join(configuration.SpamSenders, kCrLf));
  hive.Write(u"Spam Subject", kRegExpandSz, Join(configuration.SpamSubjects, kCrLf));
}

void SaveHive(const HiveSettings& hive, const Configuration& configuration) {
  SaveValues(hive, configuration);
  int32_t count = configuration.Accounts.Count();
  for (int32_t n = 1; n <= count; ++n) {
    IgnoreErrors([&] {
      Account account = configuration.AccountAt(n);
      DropUnsavedPassword(account);
      hive.WriteAccount(n, account);
    });
  }
  hive.DeleteAccountsFrom(count + 1);
}

}  // namespace

mRegistry::mRegistry(Registry& registry, const Locale& locale, Shell& shell)
    : registry_(registry), locale_(locale), shell_(shell) {}

void mRegistry::Load(Configuration& configuration) {
  Seed();
  cRegistry registry(registry_, locale_, shell_);
  configuration.DefaultEmailClient = DefaultMailClient(registry, locale_, shell_);
  for (int32_t root : {kCurrentUser, kLocalMachine}) {
    auto one_moment = registry_.BeginTransaction(root, TransactionKind::kRead);  // another host may be saving
    if (LoadHive(HiveSettings(registry, root), DefaultSound(), configuration)) return;
  }
}

void mRegistry::Save(const Configuration& configuration) {
  for (int32_t root : {kCurrentUser, kLocalMachine}) {
    auto transaction = registry_.BeginTransaction(root, TransactionKind::kWrite);
    cRegistry registry(registry_, locale_, shell_);
    SaveHive(HiveSettings(registry, root), configuration);
    transaction->Commit();
  }
}

void mRegistry::Seed() {
  cRegistry registry(registry_, locale_, shell_);
  HiveSettings hive(registry, kCurrentUser);
  if (hive.Exists()) return;
  auto transaction = registry_.BeginTransaction(kCurrentUser, TransactionKind::kWrite);
  Configuration first;
  while (auto account = ImportAccount(first.Accounts.Count() + 1, registry, shell_)) {
    first.AddAccount({.name = account->name,
                      .server = account->server,
                      .user = account->user,
                      .port = Decimal(account->port),
                      .save_password = u"0"});
  }
  first.SoundFile = DefaultSound();
  first.SpamSenders = Split(kFirstSpamSenders, kCrLf);
  first.SpamSubjects = Split(kFirstSpamSubjects, kCrLf);
  SaveHive(hive, first);
  transaction->Commit();
}

Text mRegistry::DefaultSound() const {
  return shell_.OwnFolder() + shell_.PathSeparator() + Text(kSoundName);
}

}  // namespace vesko
