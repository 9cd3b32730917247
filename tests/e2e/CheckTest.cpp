#include <gtest/gtest.h>
#include <sys/resource.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <algorithm>
#include <memory>

#include "config/mmEncrypt.h"
#include "demo/Pop3Server.h"
#include "demo/SampleMailbox.h"
#include "e2e/Machine.h"
#include "e2e/SlowNames.h"
#include "e2e/User.h"

namespace vesko {
namespace {

using demo::Pop3Faults;
using demo::Pop3Server;
using namespace std::chrono_literals;

const QString kNothingUnread = "You have no mail not read.";

std::string Message(const std::string& id) {
  return "From: " + id + "@example.com\r\nSubject: " + id + "\r\nMessage-ID: <" + id +
         "@example.com>\r\n\r\nbody of " + id + "\r\n";
}

std::unique_ptr<Pop3Server> SampleServer() {
  return std::make_unique<Pop3Server>(
      std::vector<demo::Pop3Account>{{"minji", "first secret", demo::SampleMessages("minji")},
                                     {"office", "second secret", demo::SampleMessages("office")}});
}

// A server with one account, "kim", and one message in it.
Pop3Server SmallServer(Pop3Faults faults = {}) {
  return Pop3Server({{"kim", "right", {Message("only")}}}, std::move(faults));
}

TestAccount Kim(const Pop3Server& server, Text password = u"right") {
  return {u"kim", std::move(password), server.Port()};
}

User::Deed PressDeed(const QString& button) {
  return [button](QWidget& window) { Press(window, button); };
}

// Windows show changes some milliseconds after they happen, and people wait for them.
User::Condition CanPress(const QString& button) {
  return
      [button](QWidget& window) { return window.findChild<QAbstractButton*>(button)->isEnabled(); };
}

User::Condition HasTitle(const QString& title) {
  return [title](QWidget& window) { return window.windowTitle() == title; };
}

User::Deed Dismiss(const QString& expected) {
  return [expected](QWidget& window) {
    EXPECT_EQ(Shown(window), expected);
    window.close();
  };
}

int RowOf(QWidget& window, const QString& from) {
  for (int row = 0; row < RowCount(window, "LV1"); ++row) {
    if (Row(window, "LV1", row).value(0).startsWith(from)) return row;
  }
  return -1;
}

double ProcessorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

TEST(Check, ListsTwoAccountsAndDeletesTheirSpam) {
  auto server = SampleServer();
  Machine machine;
  machine.SetUp(
      {{u"minji", u"first secret", server->Port()}, {u"office", u"second secret", server->Port()}});
  auto session = machine.NewSession();
  User user;
  user.In("fListMail", HasTitle("34 MAILS (33 NEW MAILS, 2 SPAM MAILS)"), [](QWidget& window) {
    EXPECT_EQ(RowCount(window, "LV1"), 34);
    EXPECT_EQ(
        Row(window, "LV1", 0),
        QStringList({"이서준 <seojun.lee@example.kr>", "이번 주말 등산 같이 가실래요? ",
                     "06/10/2026 18:40 ", "127.0.0.1", "김민지 <minji@mail.example>", "", ""}));
    EXPECT_TRUE(Shown(window, "txtBody").contains("북한산 입구에서"));
    EXPECT_EQ(Row(window, "LV1", 33).value(1), "Καλημέρα από την Αθήνα ");
    EXPECT_GE(RowOf(window, "Lucky Offers"), 0);
    Press(window, "cmdMail(1)");
  });
  user.In("fListMail", HasTitle("32 MAILS (31 NEW MAILS, 0 SPAM MAILS)"), [](QWidget& window) {
    EXPECT_EQ(RowCount(window, "LV1"), 32);
    EXPECT_EQ(RowOf(window, "Lucky Offers"), -1);
    EXPECT_EQ(RowOf(window, "A Friend"), -1);
    Press(window, "cmdMail(3)");
  });
  session.component.CheckMail();

  const auto left = server->Messages("minji");
  EXPECT_EQ(left.size(), demo::SampleMessages("minji").size() - 2);
  for (const std::string& text : left) {
    EXPECT_EQ(text.find("@spam.example"), std::string::npos);
    EXPECT_EQ(text.find("iloveyou"), std::string::npos);
  }
  EXPECT_EQ(server->Messages("office"), demo::SampleMessages("office"));
}

TEST(Check, AsksForAMissingPasswordAndStoresItScrambled) {
  auto server = SmallServer();
  Machine machine;
  machine.SetUp({Kim(server, u"")});
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
  User user;  // who is not asked again
  user.In("fListMail", PressDeed("cmdMail(3)"));
  session.component.CheckMail();
}

TEST(Check, ShowsAWrongPasswordMaskedWhenItAsksWhetherToTryAgain) {
  auto server = SmallServer();
  Machine machine;
  machine.SetUp({Kim(server, u"wrong one")});
  auto session = machine.NewSession();
  User user;
  const QString question =
      "Checking mail is failed on '127.0.0.1'.\nLast command was 'PASS *********'.\nTry again ?";
  auto answer = [&](const QString& button) {
    return [&question, button](QWidget& window) {
      EXPECT_EQ(Shown(window, "lblMessage").replace("\r\n", "\n").trimmed(), question);
      Press(window, button);
    };
  };
  user.In("QuestionBox", answer("cmdAnswer(0)"));
  user.In("QuestionBox", answer("cmdAnswer(1)"));
  user.In("MessageBox", Dismiss(kNothingUnread));
  session.component.CheckMail();
}

TEST(Check, NextGoesOnWithTheNextAccount) {
  Pop3Faults silent;
  silent.never_answer = true;
  auto first = SmallServer(silent);
  auto second = SmallServer();
  Machine machine;
  machine.SetUp({Kim(first), Kim(second)});
  auto session = machine.NewSession();
  User user;
  user.In("fCheckMail", PressDeed("cmdNext"));
  user.In("fListMail", HasTitle("1 MAILS (0 NEW MAILS, 0 SPAM MAILS)"), PressDeed("cmdMail(3)"));
  session.component.CheckMail();
}

TEST(Check, CancelEndsItWhileTheNameIsStillLookedUp) {
  Machine machine;
  machine.SetUp({{u"kim", u"secret", kPop3Port, u"slow.example"}});
  auto session = machine.NewSession();
  SlowName name("slow.example");
  User user;
  user.In(
      "fCheckMail",
      [](QWidget& window) {
        return Shown(window, "lblProgress") == "Resolving host 'slow.example' ...";
      },
      PressDeed("cmdCancel"));
  user.In("MessageBox", Dismiss(kNothingUnread));
  session.component.CheckMail();
}

TEST(Check, TellsThatAServerRefusesAndTriesUntilCancel) {
  uint16_t closed_port = SmallServer().Port();
  Machine machine;
  machine.SetUp({{u"kim", u"secret", closed_port}});
  auto session = machine.NewSession();
  User user;
  auto dismiss = [](QWidget& window) {
    EXPECT_TRUE(Shown(window).startsWith("Winsock Error: #10061")) << Shown(window).toStdString();
    EXPECT_EQ(window.windowTitle(), "127.0.0.1");
    window.close();
  };
  user.In("MessageBox", dismiss);
  user.In("MessageBox", dismiss);
  user.In("fCheckMail", PressDeed("cmdCancel"));
  user.In("MessageBox", Dismiss(kNothingUnread));
  session.component.CheckMail();
}

TEST(Check, WaitsForASilentServerWithoutUsingTheProcessor) {
#ifdef __SANITIZE_ADDRESS__
  constexpr double kLargestShare = 0.10;
#else
  constexpr double kLargestShare = 0.01;
#endif
  Pop3Faults slow;
  slow.answer_delay = 1h;
  auto server = SmallServer(slow);
  Machine machine;
  machine.SetUp({Kim(server)}, 3);
  auto session = machine.NewSession();
  double processor = 0;
  std::chrono::steady_clock::time_point start;
  User user(50ms);
  user.In(
      "fCheckMail", [](QWidget& window) { return Shown(window, "lblCmd") == "Command: USER kim"; },
      [&](QWidget&) {
        processor = ProcessorSeconds();
        start = std::chrono::steady_clock::now();
      });
  user.In("QuestionBox", [&](QWidget& window) {
    const std::chrono::duration<double> waited = std::chrono::steady_clock::now() - start;
    EXPECT_GT(waited, 2s);
    EXPECT_LT(waited, 10s);
    EXPECT_LT(ProcessorSeconds() - processor, waited.count() * kLargestShare);
    EXPECT_TRUE(Shown(window, "lblMessage").contains("Last command was 'USER kim'."));
    Press(window, "cmdAnswer(1)");
  });
  user.In("MessageBox", Dismiss(kNothingUnread));
  session.component.CheckMail();
}

TEST(Settings, SurviveARestart) {
  Machine machine;
  machine.SetUp({{u"kim", u"secret", 4110}});
  {
    auto session = machine.NewSession();
    User user;
    user.In("fConfig", [](QWidget& window) {
      Type(window, "txtPop3Account(0)", "Kim at home");
      Type(window, "txtPop3Account(4)", "5110");
      TurnToPage(window, "POP3 Mail Option");
      Type(window, "txtPOP3DownLines", "7");
      Press(window, "cmdOK");
    });
    session.component.Configure();
  }
  EXPECT_FALSE(machine.HivesHold("secret"));
  auto session = machine.NewSession();
  const Configuration& configuration = session.state.configuration;
  EXPECT_EQ(configuration.DownLines, 7);
  ASSERT_EQ(configuration.Accounts.Count(), 1);
  const auto fields = SplitAccount(ToText(configuration.Accounts.Item(1)));
  EXPECT_EQ(fields[kAccountName], u"Kim at home");
  EXPECT_EQ(fields[kAccountPort], u"5110");
  EXPECT_EQ(Decrypt(fields[kAccountPassword], session.state.GetDesktop().GetLocale()), u"secret");
}

}  // namespace
}  // namespace vesko
