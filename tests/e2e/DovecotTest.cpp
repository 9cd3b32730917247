#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "e2e/Dovecot.h"
#include "e2e/Machine.h"
#include "e2e/User.h"

namespace vesko {
namespace {

// Every tenth message is one that the spam keywords catch, by sender and by subject in turn.
std::string Message(int number) {
  const std::string n = std::to_string(number);
  const std::string sender = number % 20 == 0 ? "lucky@SPAM.example" : "a@b.example";
  const std::string subject = number % 20 == 10 ? "read this iloveyou letter " : "Hello ";
  return "From: Sender <" + sender + ">\r\nSubject: " + subject + n + "\r\nMessage-ID: <" + n +
         "@e2e.example>\r\nDate: Mon, 5 Oct 2026 09:12:44 +0900\r\n\r\nBody " + n + "\r\n";
}

TEST(AgainstDovecot, ChecksTwoAccountsAndDeletesExactlyTheSpam) {
  Dovecot dovecot({{"kim", "first secret"}, {"lee", "second secret"}});
  std::map<std::string, std::set<std::string>> kept;
  for (int i = 1; i <= 200; ++i) {
    const char* owner = i <= 100 ? "kim" : "lee";
    const std::string file = dovecot.Deliver(owner, Message(i));
    if (i % 10 != 0) kept[owner].insert(file);
  }
  Machine machine;
  machine.SetUp(
      {{u"kim", u"first secret", dovecot.Port()}, {u"lee", u"second secret", dovecot.Port()}});
  auto session = machine.NewSession();
  User user;
  auto has_title = [](const QString& title) {
    return [title](QWidget& window) { return window.windowTitle() == title; };
  };
  user.In("fListMail", has_title("200 MAILS (199 NEW MAILS, 20 SPAM MAILS)"), [&](QWidget& window) {
    EXPECT_EQ(Row(window, "LV1", 198).value(1), "Hello 199 ");
    EXPECT_EQ(dovecot.Files("kim").size(), 100u);
    Press(window, "cmdMail(1)");
  });
  user.In("fListMail", has_title("180 MAILS (179 NEW MAILS, 0 SPAM MAILS)"),
          [](QWidget& window) { Press(window, "cmdMail(3)"); });
  session.component.CheckMail();
  EXPECT_EQ(dovecot.Files("kim"), kept["kim"]);
  EXPECT_EQ(dovecot.Files("lee"), kept["lee"]);
}

}  // namespace
}  // namespace vesko
