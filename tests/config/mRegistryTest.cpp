#include <gtest/gtest.h>

#include <tuple>

#include "base/RunTimeError.h"
#include "config/mRegistry.h"
#include "support/FakeShell.h"
#include "support/MemoryRegistry.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

constexpr char kMain[] = "SOFTWARE\\Quarnel\\Config\\Email Accounts";

std::string AccountKey(int n) { return std::string(kMain) + "\\0000000" + std::to_string(n); }

Text Record(const Text& name, const Text& password, const Text& port, const Text& save) {
  return Account{name, u"host", u"user", password, port, save, u"0"}.ToRecord();
}

class mRegistryTest : public testing::Test {
 protected:
  Configuration Load() {
    Configuration configuration;
    store_.Load(configuration);
    return configuration;
  }
  std::string User(std::string_view name) { return memory_.Show(kCurrentUser, kMain, name); }
  std::string User(int n, std::string_view name) {
    return memory_.Show(kCurrentUser, AccountKey(n), name);
  }
  static Configuration WithAccounts(const std::vector<Text>& records) {
    Configuration configuration;
    for (Variant record : records) configuration.Accounts.Add(record);
    return configuration;
  }

  MemoryRegistry memory_;
  FakeShell shell_;
  std::unique_ptr<Locale> locale_ = MakeTestLocale();
  mRegistry store_{memory_, *locale_, shell_};
};

TEST_F(mRegistryTest, FirstLoadSeedsTheUsersHive) {
  shell_.desktop_mail_accounts = {{u"Mail", u"pop.example", u"me", 995}, {u"Two", u"", u"", 110}};
  Configuration loaded = Load();

  const std::pair<const char*, const char*> rows[] = {
      {"Account Number", "2"},
      {"Down Lines", "20"},
      {"Check Time", "30"},
      {"Wait Time", "20"},
      {"Manual Checking", "1"},
      {"Sound File", "C:\\Vesko\\Email1.wav"},
      {"Spam Sender", "offers@spam.example\r\n@spam.example"},
      {"Spam Subject", "ILOVEYOU\r\nMELISSA"}};
  for (const auto& [name, shown] : rows) EXPECT_EQ(User(name), shown);
  EXPECT_EQ(User(1, "POP3 Server"), "pop.example");
  EXPECT_EQ(User(1, "POP3 Password"), "");
  EXPECT_EQ(User(1, "Save Password"), "0");
  EXPECT_FALSE(memory_.HasKey(kLocalMachine, kMain));
  EXPECT_EQ(memory_.WritesOutsideTransactions(), 0);

  EXPECT_EQ(ToText(loaded.Accounts.Item(1)), u"Mail\r\npop.example\r\nme\r\n\r\n995\r\n0\r\n");
}

TEST_F(mRegistryTest, TheMachinesHiveServesWhereTheUsersCannotBeMade) {
  memory_.PutNumber(kLocalMachine, kMain, "Down Lines", 5);
  memory_.PutNumber(kLocalMachine, kMain, "Account Number", 1);
  memory_.Fail(RegistryCall::kCreateKey, kStatusAccessDenied);
  Configuration loaded = Load();
  EXPECT_EQ(loaded.DownLines, 5);
  EXPECT_EQ(ToText(loaded.Accounts.Item(1)), u"\r\n\r\n\r\n\r\n110\r\n0\r\n");
}

TEST_F(mRegistryTest, ReadsNumbersOfEveryTypeOrKeepsTheLast) {
  memory_.PutNumber(kCurrentUser, kMain, "Down Lines", 1);
  using Row = std::tuple<uint32_t, std::string, int32_t>;
  const Row rows[] = {{kRegDword, {4, 0, 0, 0}, 4},
                      {kRegSz, {' ', '2', '5', 0}, 25},
                      {kRegSz, {'a', 'b', 0}, 99},
                      {kRegSz, {0}, 99},
                      {kRegBinary, {1}, 99}};
  memory_.PutText(kCurrentUser, kMain, "Account Number", "many");
  for (const auto& [type, data, expected] : rows) {
    memory_.Put(kCurrentUser, kMain, "Wait Time", type, data);
    Configuration configuration;
    configuration.WaitTime = 99;
    store_.Load(configuration);
    EXPECT_EQ(configuration.WaitTime, expected) << type << " " << data;
    EXPECT_EQ(configuration.Accounts.Count(), 0);
  }
}

TEST_F(mRegistryTest, LoadReplacesEverything) {
  memory_.PutNumber(kCurrentUser, kMain, "Account Number", 3);
  memory_.PutText(kCurrentUser, AccountKey(1), "Account Name", "one");
  memory_.PutText(kCurrentUser, AccountKey(3), "Account Name", "three");
  memory_.PutText(kCurrentUser, AccountKey(3), "POP3 Port", "2110");
  memory_.PutText(kCurrentUser, kMain, "Spam Sender", "a\r\n\r\nb");
  memory_.Put(kCurrentUser, kMain, "Sound File", kRegExpandSz, "%S%\\x.wav");
  memory_.environment = {{"S", "D:\\sounds"}};
  Configuration configuration = WithAccounts({u"old", u"older"});
  configuration.SpamSubjects = {u"old"};
  configuration.DownLines = 3;
  shell_.desktop_mail_accounts = {{u"Not seeded again", u"h", u"u", 110}};
  for (int times = 0; times < 2; ++times) {
    store_.Load(configuration);
    ASSERT_EQ(configuration.Accounts.Count(), 3);
    EXPECT_EQ(configuration.AccountAt(1).name, u"one");
    EXPECT_EQ(ToText(configuration.Accounts.Item(2)), u"\r\n\r\n\r\n\r\n110\r\n0\r\n");
    EXPECT_EQ(configuration.AccountAt(3).port, u"2110");
    EXPECT_EQ(configuration.SpamSenders, (std::vector<Text>{u"a", u"", u"b"}));
    EXPECT_TRUE(configuration.SpamSubjects.empty());
    EXPECT_EQ(configuration.SoundFile, u"D:\\sounds\\x.wav");
    EXPECT_EQ(configuration.DownLines, 20);
  }
}

TEST_F(mRegistryTest, SavesToBothHivesAsOneUnitEachAndLoadsBack) {
  Configuration saved = WithAccounts({Record(u"A 한", u"scr@mbled", u"995", u"-1")});
  saved.DownLines = 1;
  saved.CheckInterval = 2;
  saved.ManualChecking = 0;
  saved.SoundFile = u"C:\\50%.wav";
  saved.SpamSenders = {u"x", u"", u"y"};
  store_.Save(saved);
  EXPECT_EQ(memory_.Transactions(kCurrentUser), 1);
  EXPECT_EQ(memory_.Transactions(kLocalMachine), 1);
  EXPECT_EQ(memory_.WritesOutsideTransactions(), 0);
  EXPECT_EQ(memory_.Show(kLocalMachine, AccountKey(1), "POP3 Password"), "scr@mbled");
  EXPECT_EQ(User("Spam Subject"), "");

  Configuration loaded = Load();
  EXPECT_EQ(ToText(loaded.Accounts.Item(1)), u"A 한\r\nhost\r\nuser\r\nscr@mbled\r\n995\r\n-1\r\n");
  EXPECT_EQ(loaded.DownLines, 1);
  EXPECT_EQ(loaded.ManualChecking, 0);
  EXPECT_EQ(loaded.SoundFile, saved.SoundFile);
}

TEST_F(mRegistryTest, RemovesTheAccountsBehindTheLastUpToAGap) {
  std::vector<Text> five(5, Record(u"a", u"", u"110", u"0"));
  store_.Save(WithAccounts(five));
  memory_.PutText(kCurrentUser, AccountKey(7), "Account Name", "stale");
  five.resize(3);
  store_.Save(WithAccounts(five));
  EXPECT_EQ(User("Account Number"), "3");
  for (int n = 1; n <= 7; ++n) {
    EXPECT_EQ(memory_.HasKey(kCurrentUser, AccountKey(n)), n <= 3 || n == 7) << n;
    EXPECT_EQ(memory_.HasKey(kLocalMachine, AccountKey(n)), n <= 3) << n;
  }
}

TEST_F(mRegistryTest, PasswordsAreStoredOnlyWhereTheSwitchIsOn) {
  const std::pair<Text, const char*> rows[] = {{u"1", "pw"}, {u"-1", "pw"}, {u"0", ""},
                                               {u"", ""},    {u"yes", ""},  {u"0.4", ""}};
  for (const auto& [save, stored] : rows) {
    store_.Save(WithAccounts({Record(u"a", u"pw", u"no port", save), u"short"}));
    EXPECT_EQ(User(1, "POP3 Password"), stored);
    EXPECT_EQ(memory_.Show(kLocalMachine, AccountKey(1), "POP3 Password"), stored);
    EXPECT_EQ(User(1, "Save Password") == "0", *stored == '\0');
  }
  EXPECT_EQ(User(1, "POP3 Port"), "(none)");
  EXPECT_EQ(User(2, "Account Name"), "short");
}

}  // namespace
}  // namespace vesko
