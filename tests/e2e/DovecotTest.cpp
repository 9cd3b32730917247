#include <gtest/gtest.h>

#include <set>
#include <string>

#include "e2e/Dovecot.h"
#include "e2e/Machine.h"
#include "e2e/User.h"

namespace vesko {
namespace {

constexpr int kMessagesEach = 100;

// Every tenth message is one that the spam keywords catch, by sender and by subject in turn.
std::string Message(int number) {
  const bool spam = number % 10 == 0;
  const bool by_sender = number % 20 == 0;
  return std::string("From: Sender <") +
         (spam && by_sender ? "lucky@SPAM.example" : "a@b.example") +
         ">\r\nSubject: " + (spam && !by_sender ? "read this iloveyou letter" : "Hello") + " " +
         std::to_string(number) + "\r\nMessage-ID: <" + std::to_string(number) +
         "@e2e.example>\r\nDate: Mon, 5 Oct 2026 09:12:44 +0900\r\n\r\nBody " +
         std::to_string(number) + "\r\n";
}

TEST(AgainstDovecot, ChecksTwoAccountsAndDeletesExactlyTheSpam) {
  Dovecot dovecot({{"kim", "first secret"}, {"lee", "second secret"}});
  std::set<std::string> kept[2];
  for (int i = 1; i <= 2 * kMessagesEach; ++i) {
    const int owner = i <= kMessagesEach ? 0 : 1;
    const std::string file = dovecot.Deliver(owner == 0 ? "kim" : "lee", Message(i));
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
    EXPECT_EQ(dovecot.Files("kim").size(), size_t{kMessagesEach});
    Press(window, "cmdMail(1)");
  });
  user.In("fListMail", has_title("180 MAILS (179 NEW MAILS, 0 SPAM MAILS)"), [](QWidget& window) {
    EXPECT_EQ(RowCount(window, "LV1"), 180);
    Press(window, "cmdMail(3)");
  });
  session.component.CheckMail();
  EXPECT_EQ(dovecot.Files("kim"), kept[0]);
  EXPECT_EQ(dovecot.Files("lee"), kept[1]);
}

}  // namespace
}  // namespace vesko
