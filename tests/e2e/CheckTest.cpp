#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QTcpSocket>
#include <QTest>
#include <chrono>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "demo/Pop3Server.h"
#include "demo/SampleMailbox.h"
#include "e2e/Dovecot.h"
#include "e2e/Machine.h"
#include "e2e/User.h"

namespace vesko {
namespace {

using demo::Pop3Server;

User::Deed PressDeed(const QString& button) {
  return [button](QWidget& window) { Press(window, button); };
}

// Windows show changes some milliseconds late, so a person waits for them.
User::Condition CanPress(const QString& button) {
  return
      [button](QWidget& window) { return window.findChild<QAbstractButton*>(button)->isEnabled(); };
}

User::Condition HasTitle(const QString& title) {
  return [title](QWidget& window) { return window.windowTitle() == title; };
}

TEST(Check, ListsTwoAccounts) {
  const Pop3Server server({{"minji", "first secret", demo::SampleMessages("minji")},
                           {"office", "second secret", demo::SampleMessages("office")}});
  Machine machine;
  machine.SetUp(
      {{u"minji", u"first secret", server.Port()}, {u"office", u"second secret", server.Port()}});
  auto session = machine.NewSession();
  User user;
  user.In("fListMail", [](QWidget& window) {
    EXPECT_EQ(window.windowTitle(), "34 MAILS (33 NEW MAILS, 2 SPAM MAILS)");
    EXPECT_EQ(
        Row(window, "LV1", 0),
        QStringList({"이서준 <seojun.lee@example.kr>", "이번 주말 등산 같이 가실래요? ",
                     "06/10/2026 18:40 ", "127.0.0.1", "김민지 <minji@mail.example>", "", ""}));
    EXPECT_TRUE(Shown(window, "txtBody").contains("북한산 입구에서"));
    EXPECT_EQ(Row(window, "LV1", 33).value(1), "Καλημέρα από την Αθήνα ");
    Press(window, "cmdMail(3)");
  });
  session.component.CheckMail();
}

TEST(Check, AsksForAMissingPasswordAndStoresItScrambled) {
  const Pop3Server server(
      {{"kim", "right", {"From: kim@example.com\r\nSubject: only\r\n\r\nbody\r\n"}}});
  Machine machine;
  machine.SetUp({{u"kim", u"", server.Port()}});
  {
    auto session = machine.NewSession();
    User user;
    user.In("fPop3Site", [](QWidget& window) {
      EXPECT_EQ(Shown(window, "txtPop3Account(0)"), "127.0.0.1");
      EXPECT_EQ(Shown(window, "txtPop3Account(1)"), "kim");
      EXPECT_FALSE(CanPress("cmdOK")(window));
      Type(window, "txtPop3Account(2)", "right");
    });
    user.In("fPop3Site", CanPress("cmdOK"), PressDeed("cmdOK"));
    user.In("fListMail", PressDeed("cmdMail(3)"));
    session.component.CheckMail();
  }
  EXPECT_FALSE(machine.HivesHold("right"));
  EXPECT_FALSE(machine.HivesHold(std::string("r\0i\0g\0h\0t\0", 10)));
  auto session = machine.NewSession();
  User user;  // is not asked again
  user.In("fListMail", PressDeed("cmdMail(3)"));
  session.component.CheckMail();
}

// Every tenth message matches a spam keyword, alternately by sender and by subject.
std::string Message(int number) {
  const std::string n = std::to_string(number);
  const std::string sender = number % 20 == 0 ? "lucky@SPAM.example" : "a@b.example";
  const std::string subject = number % 20 == 10 ? "read this iloveyou letter " : "Hello ";
  return "From: Sender <" + sender + ">\r\nSubject: " + subject + n + "\r\nMessage-ID: <" + n +
         "@e2e.example>\r\nDate: Mon, 5 Oct 2026 09:12:44 +0900\r\n\r\nBody " + n + "\r\n";
}

TEST(Check, OfTwoAccountsOfDovecotDeletesExactlyTheSpam) {
  const std::vector<Dovecot::Account> accounts = {{"kim", "first secret"},
                                                  {"lee", "second secret"}};
  Dovecot dovecot(accounts);
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
  user.In("fListMail", HasTitle("200 MAILS (199 NEW MAILS, 20 SPAM MAILS)"), [&](QWidget& window) {
    EXPECT_EQ(Row(window, "LV1", 198).value(1), "Hello 199 ");
    EXPECT_EQ(dovecot.Files("kim").size(), 100u);
    Press(window, "cmdMail(1)");
  });
  user.In("fListMail", HasTitle("180 MAILS (179 NEW MAILS, 0 SPAM MAILS)"),
          [](QWidget& window) { Press(window, "cmdMail(3)"); });
  session.component.CheckMail();
  EXPECT_EQ(dovecot.Files("kim"), kept["kim"]);
  EXPECT_EQ(dovecot.Files("lee"), kept["lee"]);
}

// --- Numbers that no longer hold ---------------------------------------------------------------

const User::Deed kDeleteSpam = PressDeed("cmdMail(1)");
const User::Deed kClose = PressDeed("cmdMail(3)");

std::string Junk(const std::string& id) {
  return "From: lucky@spam.example\r\nSubject: junk\r\nMessage-ID: <" + id + ">\r\n\r\nBuy\r\n";
}

std::string Wanted(const std::string& id) {
  return "From: a@b.example\r\nSubject: wanted\r\nMessage-ID: <" + id + ">\r\n\r\nHello\r\n";
}

/// Acts as kim's other mail program, which deletes the first messages of the mailbox.
void DeleteElsewhere(uint16_t port, int messages) {
  QTcpSocket socket;
  socket.connectToHost(QHostAddress::LocalHost, port);
  const auto expect_ok = [&] {
    while (!socket.canReadLine() && socket.waitForReadyRead()) continue;
    EXPECT_TRUE(socket.readLine().startsWith("+OK"));
  };
  const auto send = [&](const QByteArray& line) {
    socket.write(line + "\r\n");
    expect_ok();
  };
  expect_ok();
  send("USER kim");
  send("PASS secret");
  for (int n = 1; n <= messages; ++n) send("DELE " + QByteArray::number(n));
  send("QUIT");
}

TEST(Deletion, CancelledOnItsWayTakesNothingElseTheNextTime) {
  demo::Pop3Faults slow;
  slow.answer_delay = std::chrono::milliseconds(100);
  const Pop3Server server({{"kim", "secret", {Junk("1"), Junk("2"), Wanted("3"), Wanted("4")}}},
                          slow);
  Machine machine;
  machine.SetUp({{u"kim", u"secret", server.Port()}});
  auto session = machine.NewSession();
  User user;
  user.In("fListMail", HasTitle("4 MAILS (3 NEW MAILS, 2 SPAM MAILS)"), kDeleteSpam);
  user.In(
      "fCheckMail",
      [](QWidget& window) {
        return window.findChild<QLabel*>("lblCmd")->text() == "Command: DELE 2";
      },
      [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  user.In("fListMail", HasTitle("3 MAILS (2 NEW MAILS, 1 SPAM MAILS)"), kDeleteSpam);
  user.In("fListMail", HasTitle("3 MAILS (2 NEW MAILS, 1 SPAM MAILS)"), kDeleteSpam);
  user.In("fListMail", HasTitle("2 MAILS (1 NEW MAILS, 0 SPAM MAILS)"), kClose);
  session.component.CheckMail();
  EXPECT_EQ(server.Messages("kim"), (std::vector{Wanted("3"), Wanted("4")}));
}

TEST(Deletion, KeepsMailboxesOfOneNameOnTwoPortsApart) {
  const Pop3Server first({{"kim", "secret", {Wanted("1"), Junk("2")}}});
  const Pop3Server second({{"kim", "secret", {Junk("3"), Wanted("4")}}});
  Machine machine;
  machine.SetUp({{u"kim", u"secret", first.Port()}, {u"kim", u"secret", second.Port()}});
  auto session = machine.NewSession();
  User user;
  user.In("fListMail", HasTitle("4 MAILS (3 NEW MAILS, 2 SPAM MAILS)"), kDeleteSpam);
  user.In("fListMail", HasTitle("2 MAILS (1 NEW MAILS, 0 SPAM MAILS)"), kClose);
  session.component.CheckMail();
  EXPECT_EQ(first.Messages("kim"), std::vector{Wanted("1")});
  EXPECT_EQ(second.Messages("kim"), std::vector{Wanted("4")});
}

/// Stories of one account on Dovecot.
class DovecotDeletion : public testing::Test {
 protected:
  DovecotDeletion() { machine_.SetUp({{u"kim", u"secret", dovecot_.Port()}}); }

  Dovecot dovecot_{{Dovecot::Account{"kim", "secret"}}};
  Machine machine_;
};

TEST_F(DovecotDeletion, TakesNoNewMailForSpamThatIsGone) {
  dovecot_.Deliver("kim", Junk("1"));
  auto session = machine_.NewSession();
  User user;
  std::set<std::string> wanted;
  user.In("fListMail", [&](QWidget& window) {
    DeleteElsewhere(dovecot_.Port(), 1);
    wanted = {dovecot_.Deliver("kim", Wanted("2")), dovecot_.Deliver("kim", Wanted("3"))};
    kClose(window);
  });
  session.component.CheckMail();
  user.In("fListMail", HasTitle("3 MAILS (2 NEW MAILS, 1 SPAM MAILS)"), kDeleteSpam);
  user.In("fListMail", HasTitle("2 MAILS (1 NEW MAILS, 0 SPAM MAILS)"), kClose);
  session.component.CheckMail();
  EXPECT_EQ(dovecot_.Files("kim"), wanted);
}

TEST_F(DovecotDeletion, TakesNothingFromAMailboxThatHasShrunk) {
  dovecot_.Deliver("kim", Junk("1"));
  const std::set<std::string> wanted = {dovecot_.Deliver("kim", Wanted("2")),
                                        dovecot_.Deliver("kim", Wanted("3"))};
  auto session = machine_.NewSession();
  User user;
  user.In("fListMail", HasTitle("3 MAILS (2 NEW MAILS, 1 SPAM MAILS)"), [&](QWidget& window) {
    DeleteElsewhere(dovecot_.Port(), 1);
    kDeleteSpam(window);
  });
  user.In("", HasTitle("127.0.0.1"), [](QWidget& window) {
    EXPECT_EQ(dynamic_cast<QMessageBox&>(window).text(),
              "The mailbox has changed since it was checked. Nothing was deleted; please look at "
              "the list again.");
    window.close();
  });
  user.In("fListMail", HasTitle("3 MAILS (2 NEW MAILS, 1 SPAM MAILS)"), kDeleteSpam);
  user.In("fListMail", HasTitle("2 MAILS (1 NEW MAILS, 0 SPAM MAILS)"), kClose);
  session.component.CheckMail();
  EXPECT_EQ(dovecot_.Files("kim"), wanted);
}

}  // namespace
}  // namespace vesko

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);  // before the demo's server, which needs one
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
