#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QTcpSocket>
#include <QTest>
#include <chrono>
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

User::Condition Counts(int mails, int fresh, int spam) {
  return HasTitle(
      QString("%1 MAILS (%2 NEW MAILS, %3 SPAM MAILS)").arg(mails).arg(fresh).arg(spam));
}

const User::Deed kDeleteSpam = PressDeed("cmdMail(1)");
const User::Deed kClose = PressDeed("cmdMail(3)");

TEST(Check, AsksForAMissingPasswordStoresItScrambledAndListsMail) {
  const Pop3Server server({{"kim", "right", demo::SampleMessages("minji")}});
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
    user.In("fListMail", kClose);
    session.component.CheckMail();
  }
  EXPECT_FALSE(machine.HivesHold("right"));
  EXPECT_FALSE(machine.HivesHold(std::string("r\0i\0g\0h\0t\0", 10)));
  auto session = machine.NewSession();
  User user;  // is not asked again
  user.In("fListMail", [](QWidget& window) {
    EXPECT_EQ(
        Row(window, "LV1", 0),
        QStringList({"이서준 <seojun.lee@example.kr>", "이번 주말 등산 같이 가실래요? ",
                     "06/10/2026 18:40 ", "127.0.0.1", "김민지 <minji@mail.example>", "", ""}));
    EXPECT_TRUE(Shown(window, "txtBody").contains("북한산 입구에서"));
    Press(window, "cmdMail(3)");
  });
  session.component.CheckMail();
}

// --- Numbers that no longer hold ---------------------------------------------------------------

std::string Mail(const std::string& sender, const std::string& id) {
  return "From: " + sender + "\r\nSubject: hello\r\nMessage-ID: <" + id + ">\r\n\r\nHello\r\n";
}
std::string Junk(const std::string& id) { return Mail("lucky@spam.example", id); }
std::string Wanted(const std::string& id) { return Mail("a@b.example", id); }

/// Acts as kim's other mail program, which deletes the first message of the mailbox.
void DeleteFirstElsewhere(uint16_t port) {
  QTcpSocket socket;
  socket.connectToHost(QHostAddress::LocalHost, port);
  for (const char* next : {"USER kim\r\n", "PASS secret\r\n", "DELE 1\r\n", "QUIT\r\n", ""}) {
    while (!socket.canReadLine() && socket.waitForReadyRead()) continue;
    EXPECT_TRUE(socket.readLine().startsWith("+OK"));
    socket.write(next);
  }
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
  user.In("fListMail", Counts(4, 3, 2), kDeleteSpam);
  user.In(
      "fCheckMail",
      [](QWidget& window) {
        return window.findChild<QLabel*>("lblCmd")->text() == "Command: DELE 2";
      },
      [](QWidget& window) { QTest::keyClick(&window, Qt::Key_Escape); });
  user.In("fListMail", Counts(3, 2, 1), kDeleteSpam);
  user.In("fListMail", Counts(3, 2, 1), kDeleteSpam);
  user.In("fListMail", Counts(2, 1, 0), kClose);
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
  user.In("fListMail", Counts(4, 3, 2), kDeleteSpam);
  user.In("fListMail", Counts(2, 1, 0), kClose);
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
    DeleteFirstElsewhere(dovecot_.Port());
    wanted = {dovecot_.Deliver("kim", Wanted("2")), dovecot_.Deliver("kim", Wanted("3"))};
    kClose(window);
  });
  session.component.CheckMail();
  user.In("fListMail", Counts(3, 2, 1), kDeleteSpam);
  user.In("fListMail", Counts(2, 1, 0), kClose);
  session.component.CheckMail();
  EXPECT_EQ(dovecot_.Files("kim"), wanted);
}

TEST_F(DovecotDeletion, TakesNothingFromAMailboxThatHasShrunk) {
  dovecot_.Deliver("kim", Junk("1"));
  const std::set<std::string> wanted = {dovecot_.Deliver("kim", Wanted("2")),
                                        dovecot_.Deliver("kim", Wanted("3"))};
  auto session = machine_.NewSession();
  User user;
  user.In("fListMail", Counts(3, 2, 1), [&](QWidget& window) {
    DeleteFirstElsewhere(dovecot_.Port());
    kDeleteSpam(window);
  });
  user.In("", HasTitle("127.0.0.1"), [](QWidget& window) {
    EXPECT_EQ(dynamic_cast<QMessageBox&>(window).text(),
              "The mailbox has changed since it was checked. Nothing was deleted; please look at "
              "the list again.");
    window.close();
  });
  user.In("fListMail", Counts(3, 2, 1), kDeleteSpam);
  user.In("fListMail", Counts(2, 1, 0), kClose);
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
