#include "config/HiveSettings.h"

#include <algorithm>
#include <array>

#include "base/RunTimeError.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

constexpr TextView kAccountCount = u"Account Number";

/// A damaged count must not keep the program from starting; lists of accounts hold no more.
constexpr int32_t kMostAccounts = 32767;

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

Account WithoutUnsavedPassword(Account account) {
  if (account.SavesPassword()) return account;
  account.save_password = u"0";
  account.password.clear();
  return account;
}

}  // namespace

void HiveSettings::Load(const Text& default_sound, Configuration& configuration) const {
  for (const NumberSetting& number : kNumberSettings) {
    int32_t& setting = configuration.*number.setting;
    const int32_t first = Configuration().*number.setting;
    IgnoreErrors([&] { setting = values_.ReadNumber(key_, number.name, first); });
  }
  const auto read = [&](TextView name, const Text& default_value) {
    return values_.ReadText(key_, name, kRegExpandSz, default_value);
  };
  configuration.SoundFile = read(u"Sound File", default_sound);
  configuration.SpamSenders = Split(read(u"Spam Sender", {}), kCrLf);
  configuration.SpamSubjects = Split(read(u"Spam Subject", {}), kCrLf);

  configuration.Accounts.Clear();
  int32_t count = 0;
  IgnoreErrors([&] { count = values_.ReadNumber(key_, kAccountCount, 0); });
  count = std::min(count, kMostAccounts);
  for (int32_t n = 1; n <= count; ++n) configuration.AddAccount(LoadAccount(n));
}

Account HiveSettings::LoadAccount(int32_t n) const {
  Account account;
  for (const AccountValue& value : kAccountValues) {
    IgnoreErrors([&] {
      const Variant read =
          values_.Read(NumberedKey(key_, n), value.name, value.type, DefaultOf(value));
      account.*value.field = TrimNull(ToText(read));
    });
  }
  return account;
}

void HiveSettings::Save(const Configuration& configuration) const {
  SaveValues(configuration);
  const int32_t count = configuration.Accounts.Count();
  for (int32_t n = 1; n <= count; ++n) {
    IgnoreErrors([&] { SaveAccount(n, WithoutUnsavedPassword(configuration.AccountAt(n))); });
  }
  DeleteAccountsFrom(count + 1);
}

void HiveSettings::SaveValues(const Configuration& configuration) const {
  values_.Write(key_, kAccountCount, kRegDword, configuration.Accounts.Count());
  for (const auto& [name, setting] : kNumberSettings) {
    values_.Write(key_, name, kRegDword, configuration.*setting);
  }
  values_.Write(key_, u"Sound File", kRegExpandSz, configuration.SoundFile);
  values_.Write(key_, u"Spam Sender", kRegExpandSz, Join(configuration.SpamSenders, kCrLf));
  values_.Write(key_, u"Spam Subject", kRegExpandSz, Join(configuration.SpamSubjects, kCrLf));
}

void HiveSettings::SaveAccount(int32_t n, const Account& account) const {
  for (const AccountValue& value : kAccountValues) {
    IgnoreErrors([&] {
      const Text& field = account.*value.field;
      const Variant stored =
          value.type == kRegSz ? Variant(field) : Variant(ToInt32(TextView(field)));
      values_.Write(NumberedKey(key_, n), value.name, value.type, stored);
    });
  }
}

/// The last one first, and none where their number is not known: whatever ends this in between
/// leaves no gap that would hide the others from the next time.
void HiveSettings::DeleteAccountsFrom(int32_t n) const {
  int32_t last = n - 1;
  while (values_.KeyExists(NumberedKey(key_, last + 1))) ++last;
  if (values_.Failure() != kStatusSuccess) return;
  while (last >= n && values_.DeleteKey(NumberedKey(key_, last))) --last;
}

void HiveSettings::Delete() const {
  if (!Exist()) return;
  for (const Text& name : values_.SubKeys(key_)) values_.DeleteKey(Join({key_, name}, u"\\"));
  values_.DeleteKey(key_);
}

}  // namespace vesko
