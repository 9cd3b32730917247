#include <gtest/gtest.h>

#include "config/AccountImport.h"
#include "support/FakeShell.h"
#include "support/MemoryRegistry.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

constexpr char kCommand[] = "SOFTWARE\\Classes\\mailto\\shell\\open\\command";

class AccountImportTest : public testing::Test {
 protected:
  static std::string Account(int k) {
    return "SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts\\0000000" + std::to_string(k);
  }
  std::optional<ForeignAccount> Import(int32_t k) { return ImportAccount(k, user_, shell_); }
  Text Client() { return DefaultMailClient(machine_, *locale_, shell_); }

  MemoryRegistry memory_;
  FakeShell shell_;
  std::unique_ptr<Locale> locale_ = MakeTestLocale();
  HiveValues user_{memory_, *locale_, shell_, kCurrentUser};
  HiveValues machine_{memory_, *locale_, shell_, kLocalMachine};
};

TEST_F(AccountImportTest, ReadsNumberedAccountsUpToTheFirstGap) {
  for (int k : {1, 2, 4}) {
    memory_.PutText(kCurrentUser, Account(k), "Account Name", " Mail " + std::to_string(k));
  }
  memory_.PutText(kCurrentUser, Account(1), "POP3 Server", "pop.example");
  memory_.PutText(kCurrentUser, Account(1), "POP3 User Name", "u");
  memory_.PutNumber(kCurrentUser, Account(1), "POP3 Port", 995);
  memory_.PutText(kCurrentUser, Account(2), "POP3 Port", "none");
  shell_.desktop_mail_accounts = {{}, {}, {u"Desktop", u"h", u"u", 110}};

  const auto show = [](const ForeignAccount& account) {
    return Join({account.name, account.server, account.user, Decimal(account.port)}, u"/");
  };
  EXPECT_EQ(show(Import(1).value()), u"Mail 1/pop.example/u/995");
  EXPECT_EQ(show(Import(2).value()), u"Mail 2///110");  // no server and no port
  EXPECT_FALSE(Import(3));
  EXPECT_EQ(shell_.desktop_mail_account_asked, 0);
}

TEST_F(AccountImportTest, TheDesktopIsAskedOnlyWithoutAFirstAccountKey) {
  shell_.desktop_mail_accounts = {{u"Desktop", u"h", u"u", 995}};
  EXPECT_EQ(Import(1)->name, u"Desktop");
  EXPECT_FALSE(Import(2));
  memory_.PutText(kCurrentUser, Account(1), "SMTP Server", "x");  // a key without a name
  EXPECT_FALSE(Import(1));
}

TEST_F(AccountImportTest, FindsTheProgramOfTheMailtoCommand) {
  memory_.environment = {{"ProgramFiles", "C:\\Program Files"}};
  shell_.files = {u"C:\\Program Files\\Mail\\mail.exe", u"C:\\m.ExE", u"C:\\script.vbs",
                  u"C:\\x.exe", u"/usr/bin/mail"};
  shell_.folders = {u"C:\\a.exe"};
  shell_.desktop_mail_client = u"/usr/bin/mail";
  const std::pair<const char*, Text> rows[] = {
      {"\"C:\\Program Files\\Mail\\mail.exe\" -to %1", u"C:\\Program Files\\Mail\\mail.exe"},
      {"  C:\\m.ExE/mailurl:%1", u"C:\\m.ExE"},
      {"C:\\x.exe.bak", u"C:\\x.exe"},
      {"", u""},
      {"C:\\script.vbs %1", u""},
      {"C:\\missing.exe %1", u""},
      {"C:\\a.exe\\prog.exe", u""},
      {".exe", u""},
  };
  for (const auto& [command, client] : rows) {
    memory_.PutText(kLocalMachine, kCommand, "", command);
    EXPECT_EQ(Client(), client) << command;
  }
  memory_.Put(kLocalMachine, kCommand, "", kRegExpandSz, "%ProgramFiles%\\Mail\\mail.exe %1");
  EXPECT_EQ(Client(), u"C:\\Program Files\\Mail\\mail.exe");
  EXPECT_EQ(shell_.desktop_mail_client_asked, 0);
}

TEST_F(AccountImportTest, TheDesktopNamesTheClientWhereTheRegistryDoesNot) {
  shell_.desktop_mail_client = u"/usr/bin/mail";
  EXPECT_EQ(Client(), u"");  // no such file
  shell_.files = {u"/usr/bin/mail"};
  EXPECT_EQ(Client(), u"/usr/bin/mail");
}

}  // namespace
}  // namespace vesko
