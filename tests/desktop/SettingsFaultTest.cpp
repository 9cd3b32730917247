#include <gtest/gtest.h>

#include <functional>

#include "config/HiveSettings.h"
#include "config/mRegistry.h"
#include "desktop/RegistryFixture.h"
#include "support/FakeShell.h"
#include "support/FaultyRegistry.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

constexpr int32_t kStatuses[] = {kStatusAccessDenied,    kStatusBusy,
                                 kStatusDiskFull,        kStatusWriteFault,
                                 kStatusRegistryCorrupt, -1};

constexpr char16_t kSettingsKey[] = u"SOFTWARE\\Quarnel\\Config\\Email Accounts";
constexpr char16_t kJournalKey[] = u"SOFTWARE\\Quarnel\\Config\\Email Accounts Pending";

/// Every call of a load, a save and a first start fails, and the process ends at every write. The
/// object then comes to its end, which saves what it has.
class SettingsFaultTest : public testing::TestWithParam<RegistryPort> {
 protected:
  static Configuration WithAccounts(const std::vector<Text>& names) {
    Configuration configuration;
    for (const Text& name : names) {
      configuration.AddAccount({.name = name,
                                .server = name + u".example",
                                .user = name,
                                .password = name + u" scrambled",
                                .port = u"110",
                                .save_password = u"1"});
    }
    configuration.SpamSenders = names;
    configuration.WaitTime = static_cast<int32_t>(names.size());
    return configuration;
  }

  static Text Shown(const Configuration& configuration) {
    Text text = Join(configuration.SpamSenders, u",") + Decimal(configuration.WaitTime);
    for (int32_t n = 1; n <= configuration.Accounts.Count(); ++n) {
      text += u'|';
      text += Join(Split(configuration.AccountAt(n).ToRecord(), kCrLf), u" ");
    }
    return text;
  }

  void Store(const Configuration& configuration) {
    ASSERT_EQ(mRegistry(*real_, *locale_, shell_).Save(configuration), kStatusSuccess);
  }
  Text Stored() {
    Configuration configuration;
    EXPECT_EQ(mRegistry(*real_, *locale_, shell_).Load(configuration), kStatusSuccess);
    return Shown(configuration);
  }
  bool HasJournal() {
    return HiveValues(*real_, *locale_, shell_, kCurrentUser).KeyExists(kJournalKey);
  }

  using Step = std::function<void(FaultyRegistry&)>;
  using Check = std::function<void()>;

  /// Runs the step with a fault at each of its calls in turn, until there is no call left to fail,
  /// once and from then on. The statuses take their turn. `prepare` makes the state before.
  void ForEachFault(const Check& prepare, const Step& step, const Check& check) {
    int n = 1;
    for (bool reached = true; reached && !HasFailure(); ++n) {
      const int32_t status = kStatuses[static_cast<size_t>(n) % std::size(kStatuses)];
      for (bool lasting : {true, false}) {
        if (!GetParam().quick && lasting != (n % 2 == 0)) continue;
        SCOPED_TRACE("call " + std::to_string(n) + " status " + std::to_string(status) +
                     (lasting ? " from then on" : " once"));
        prepare();
        FaultyRegistry faulty(*real_);
        faulty.Fail(n, lasting, status);
        step(faulty);
        check();
        reached = faulty.Calls() >= n;
      }
    }
    EXPECT_GT(n, 20);
  }

  /// The same for the end of the process at each write.
  void ForEachKill(const Check& prepare, const Step& step, const Check& check) {
    int kills = 0;
    for (bool killed = true; killed && !HasFailure(); kills += killed) {
      SCOPED_TRACE("killed at write " + std::to_string(kills + 1));
      prepare();
      FaultyRegistry faulty(*real_);
      faulty.KillAtWrite(kills + 1);
      try {
        step(faulty);
        killed = false;
      } catch (const FaultyRegistry::Killed&) {
      }
      check();
    }
    EXPECT_GT(kills, 20);
  }

  /// As before the first start.
  void Forget() {
    const auto transaction = real_->BeginTransaction(kCurrentUser, TransactionKind::kWrite);
    HiveValues values(*real_, *locale_, shell_, kCurrentUser);
    for (const char16_t* key : {kSettingsKey, kJournalKey}) HiveSettings(values, key).Delete();
    ASSERT_EQ(transaction->Commit(), kStatusSuccess);
  }

  TempFolder folder_;
  FakeShell shell_;
  std::unique_ptr<Locale> locale_ = MakeTestLocale();
  std::unique_ptr<Registry> real_ = GetParam().make(folder_);
  const Configuration old_ = WithAccounts({u"one", u"two", u"three"});
  const Configuration new_ = WithAccounts({u"one", u"three"});
};

TEST_P(SettingsFaultTest, WhatCouldNotBeLoadedIsNotSavedOver) {
  ForEachFault([&] { Store(old_); },
               [&](FaultyRegistry& registry) {
                 mRegistry store(registry, *locale_, shell_);
                 Configuration configuration;
                 const int32_t status = store.Load(configuration);
                 EXPECT_EQ(status, store.LoadStatus());
                 EXPECT_EQ(configuration.Accounts.Count(), status == kStatusSuccess ? 3 : 0);
                 registry.Heal();
                 EXPECT_EQ(store.Save(configuration), status);
               },
               [&] { EXPECT_EQ(Stored(), Shown(old_)); });
}

TEST_P(SettingsFaultTest, ASaveStoresAllOrNothingAndSaysWhich) {
  int32_t status = kStatusSuccess;
  const auto save = [&](FaultyRegistry& registry) {
    status = -1;  // for a save that does not return
    status = mRegistry(registry, *locale_, shell_).Save(new_);
  };
  const auto check = [&] {
    const Text stored = Stored();
    if (status == kStatusSuccess || stored != Shown(old_)) {
      EXPECT_EQ(stored, Shown(new_));
    }
    Store(new_);
    EXPECT_EQ(Stored(), Shown(new_));
    EXPECT_FALSE(HasJournal());
  };
  ForEachFault([&] { Store(old_); }, save, check);
  ForEachKill([&] { Store(old_); }, save, check);
}

TEST_P(SettingsFaultTest, AFirstStartThatFailsIsTriedAgain) {
  shell_.desktop_mail_accounts = {{u"Mail", u"pop.example", u"me", 995}, {u"Two", u"", u"", 110}};
  const auto start = [&](FaultyRegistry& registry) {
    mRegistry store(registry, *locale_, shell_);
    Configuration configuration;
    const bool loaded = store.Load(configuration) == kStatusSuccess;
    EXPECT_EQ(configuration.Accounts.Count(), loaded ? 2 : 0);
    registry.Heal();
    store.Save(configuration);
  };
  const auto check = [&] {
    Configuration configuration;
    EXPECT_EQ(mRegistry(*real_, *locale_, shell_).Load(configuration), kStatusSuccess);
    EXPECT_EQ(configuration.Accounts.Count(), 2);
    EXPECT_EQ(configuration.AccountAt(1).name, u"Mail");
    EXPECT_EQ(configuration.SpamSubjects, (std::vector<Text>{u"ILOVEYOU", u"MELISSA"}));
  };
  ForEachFault([&] { Forget(); }, start, check);
  ForEachKill([&] { Forget(); }, start, check);
}

INSTANTIATE_TEST_SUITE_P(Ports, SettingsFaultTest, testing::ValuesIn(kRegistryPorts),
                         [](const auto& port) { return port.param.name; });

}  // namespace
}  // namespace vesko
