#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "config/mmEncrypt.h"
#include "pop3/CheckRig.h"

namespace vesko {
namespace {

TEST(CheckRun, ShowsEachStep) {
  CheckRig rig;
  rig.AddAccount();
  Script script = After(1.7) + Mailbox({Mail(u"a"), Mail(u"b")});
  script.steps.back() = PeerCloses().steps[0];  // instead of a reply to QUIT
  rig.Run({script});
  const Lines expected = {
      "next: off",
      "caption: Checking mail box of 'pop.example.org' ...",
      "progress: Connecting 'pop.example.org' ...",
      "lblCmd: Command: Connecting to pop.example.org",
      "time: 1 seconds",
      "progress: Resolving host 'pop.example.org' ...",
      "time: 2 seconds",
      "progress: Resolving host 'pop.example.org' ...",
      "progress: Connecting 'pop.example.org' ...",
      "time: 0 seconds",
      "progress: Connecting to pop.example.org ...",
      "lblCmd: Command: USER ann",
      "lblCmd: Command: PASS ******",
      "lblCmd: Command: STAT",
      "maximum: 2",
      "value: 0",
      "lblCmd: Command: TOP 1 5",
      "progress: Checking mail 1/2 ... ",
      "value: 1",
      "lblCmd: Command: TOP 2 5",
      "progress: Checking mail 2/2 ... ",
      "value: 2",
      "lblCmd: Command: QUIT",
      "progress: Closing connection to 'pop.example.org' ...",
      "progress: 2 are in the mail boxes !!!",
      "unload: ",
  };
  Lines log = rig.view.log;
  log.erase(std::unique(log.begin(), log.end()), log.end());
  EXPECT_EQ(log, expected);
  EXPECT_EQ(rig.socket.connected, Lines{"pop.example.org:995"});
  EXPECT_TRUE(rig.run.NewMail());
}

TEST(CheckRun, RunsOncePerPreparation) {
  CheckRig rig;
  rig.AddAccount();
  rig.Run({Mailbox({Mail(u"a"), Mail(u"b")}), Mailbox({Mail(u"b")})});
  rig.run.Activate();
  rig.Find(u"b").Read = true;
  rig.Run();
  EXPECT_EQ(rig.Mails(), (Lines{"a#1", "b#1"}));  // the number under which it was last seen
  EXPECT_TRUE(rig.Find(u"b").Read);
  EXPECT_EQ(rig.socket.Unused(), 0u);
}

TEST(CheckRun, LimitsSilenceOnly) {
  const std::tuple<double, int32_t, bool> rows[] = {
      {19.99, 20, true}, {20, 20, true}, {20.01, 20, false}, {0, 0, true}, {0.01, 0, false}};
  for (const auto& [silence, limit, in_time] : rows) {
    SCOPED_TRACE(silence);
    CheckRig rig;
    rig.AddAccount();
    rig.configuration.WaitTime = limit;
    Script script = Mailbox({});
    for (size_t step : {4, 2}) {
      script.steps.insert(script.steps.begin() + step, After(silence).steps[0]);
    }
    rig.Run({script});
    EXPECT_EQ(rig.Dialogs().empty(), in_time);
    EXPECT_LT(rig.pump.turns, 150);  // it sleeps from label to label
  }
}

TEST(CheckRun, TriesAgainUntilToldNo) {
  CheckRig rig;
  rig.AddAccount();
  rig.AddAccount();
  const Script refused = Login() + Client(u"STAT") + Server(u"-ERR\r\n");
  rig.socket.conversations = {refused, refused, refused, Fails(kSocketConnectionRefused, u"No.")};
  rig.view.answers = {0, -1, 1, 1};  // yes, box closed, no, and no to the other account
  rig.Run();
  // The last command outlives its account, so a refused connection is asked about too.
  EXPECT_EQ(rig.view.Noted("ask"), Lines(4, Asked("STAT").substr(5)));
  EXPECT_EQ(rig.socket.Unused(), 0u);
}

TEST(CheckRun, RestsBetweenUnaskedTries) {
  CheckRig rig;
  rig.AddAccount();
  rig.socket.failing_connects = 3;
  rig.Run({Mailbox({Mail(u"a")})});
  EXPECT_NEAR(rig.clock.now, 1003, 0.01);
  EXPECT_EQ(rig.Mails(), Lines{"a#1"});
  EXPECT_EQ(rig.Dialogs(), Lines{});
}

TEST(CheckRun, AsksForWhatAnAccountLacks) {
  CheckRig rig;
  rig.AddAccount(u"", u"bob", u"");
  rig.AddAccount(u"left.out", u"bob", u"");
  rig.AddAccount(u"pop.example.org", u"ann", u"secret", u"pop3");
  rig.socket.conversations = {Server(u"+OK\r\n") + Client(u"USER ann") + Server(u"-ERR\r\n"),
                              Mailbox({Mail(u"a")})};
  rig.view.on_credentials = [](Credentials& typed) {
    if (typed.server == u"left.out") return false;
    typed = {u"pop.example.org", u"ann", u"s p", false};
    return true;
  };
  rig.Run();
  EXPECT_EQ(rig.Dialogs(), (Lines{"credentials: /bob//saved", Asked("USER ann"),
                                  "credentials: left.out/bob//saved"}));
  EXPECT_EQ(rig.socket.connected.back(), "pop.example.org:110");  // its port is not a number
  EXPECT_EQ(rig.Mails(), Lines{"a#1"});
  const Account account = rig.configuration.AccountAt(1);
  EXPECT_EQ(Decrypt(account.password, rig.locale), u"s p");
  EXPECT_EQ(account.save_password, u"0");
}

TEST(CheckRun, AsksInsteadOfSendingAControlCharacter) {
  for (Text Credentials::*field :
       {&Credentials::server, &Credentials::user, &Credentials::password}) {
    for (const Text end : {u"\r\nDELE 1", u"\n", u"\t", u"\x7F"}) {
      CheckRig rig;
      Credentials stored{u"pop.example.org", u"ann", u"secret"};
      stored.*field += field == &Credentials::password ? end : end.substr(0, 1);
      rig.AddAccount(stored.server, stored.user, stored.password);
      int asked = 0;
      rig.view.on_credentials = [&](Credentials& typed) {
        EXPECT_EQ(typed.*field, stored.*field);
        stored.*field = typed.*field = u"x" + end;
        return ++asked < 3;
      };
      rig.Run();
      EXPECT_EQ(asked, 3);
      EXPECT_EQ(rig.socket.connected, Lines{});
    }
  }
}

// --- The user at any moment -------------------------------------------------------------------

struct Press {
  const char* name;
  void (*act)(CheckRig&);
  bool ends_run;
};

const std::vector<Press> kPresses = {
    {"Next", [](CheckRig& rig) { rig.run.Next(); }, false},
    {"Cancel", [](CheckRig& rig) { rig.run.Cancel(); }, true},
    {"close", [](CheckRig& rig) { rig.view.UnloadWindow(); }, true}};

/// Runs a check, pressing one button at a turn of the pump and another some turns later, possibly
/// while the first press is still being handled. Returns how many turns the run took.
int RunPressed(CheckRig& rig, int turn, const Press& first, int later, const Press* second) {
  size_t connected = 0;
  bool ended = false;
  rig.pump.on_turn = [&](int now) {
    if (rig.view.unloaded) return;
    const Press* press = now == turn ? &first : now == turn + later ? second : nullptr;
    if (!press) return;
    connected = rig.socket.connected.size();
    ended = ended || press->ends_run;
    press->act(rig);
  };
  rig.Run();
  EXPECT_TRUE(!ended || rig.socket.connected.size() == connected);
  EXPECT_EQ(rig.view.unloaded, true);
  EXPECT_EQ(rig.view.Noted("unload").size(), 1u);
  return rig.pump.turns;
}

void ExpectNothingLeft(CheckRig& rig) {
  EXPECT_EQ(rig.Dialogs(), Lines{});
  EXPECT_EQ(rig.socket.State(), SocketState::kClosed);
  for (const std::string& fault : rig.socket.faults) EXPECT_EQ(fault, "out of turn: QUIT");
  EXPECT_LE(rig.socket.faults.size(), 2u);
  rig.pump.on_turn = nullptr;
  const size_t sent = rig.socket.sent.size();
  rig.pump.RunPending(std::chrono::seconds(100));
  EXPECT_EQ(rig.socket.sent.size(), sent);
}

void PressEverywhere(const std::function<void(CheckRig&)>& arrange,
                     const std::function<void(CheckRig&, bool run_ended)>& expect) {
  for (const Press& first : kPresses) {
    for (size_t n = 0; n <= 2 * kPresses.size(); ++n) {
      const Press* second = n == 0 ? nullptr : &kPresses[(n - 1) / 2];
      const int later = 1 + static_cast<int>(n % 2);
      for (int turn = 1, turns = turn; turn <= turns; ++turn) {
        SCOPED_TRACE(std::string(first.name) + " at " + std::to_string(turn) + ", then " +
                     (second ? second->name : "nothing"));
        CheckRig rig;
        rig.AddAccount();
        rig.AddAccount(u"pop.other.org");
        arrange(rig);
        turns = RunPressed(rig, turn, first, later, second);
        ExpectNothingLeft(rig);
        expect(rig, first.ends_run);
        if (testing::Test::HasFailure()) return;
      }
    }
  }
}

bool Sent(const CheckRig& rig, const std::string& line) {
  return std::count(rig.socket.sent.begin(), rig.socket.sent.end(), line) != 0;
}

TEST(Buttons, WorkAtEveryTurnOfACheck) {
  PressEverywhere(
      [](CheckRig& rig) {
        // Resolving the name takes a while, and an unfinished reply continues after the press.
        rig.socket.failing_connects = 2;
        rig.socket.piece_size = 40;
        rig.socket.conversations = {After(2) + Mailbox({Mail(u"a"), Mail(u"b")}), Mailbox({})};
      },
      [](CheckRig& rig, bool) { EXPECT_TRUE(!Sent(rig, "TOP 2 5") || rig.mails.Count() > 0); });
}

TEST(Buttons, WorkAtEveryTurnOfADeletion) {
  PressEverywhere(
      [](CheckRig& rig) {
        rig.AddMarked({{u"a", 1}, {u"b", 2}}, 0);
        const Script deletion = Login() + Stat(u"0 9") + Dele(1) + Dele(2) + Quit();
        rig.socket.conversations = {deletion, Mailbox({}), Mailbox({})};
      },
      [](CheckRig& rig, bool run_ended) {
        const bool gone = rig.mails.Count() == 0;
        EXPECT_TRUE(!gone || Sent(rig, "QUIT"));
        EXPECT_TRUE(!gone || !run_ended || Sent(rig, "DELE 2"));
      });
}

TEST(Buttons, NextLogsOutAndGoesOn) {
  CheckRig rig;
  rig.AddAccount();
  rig.AddAccount(u"pop.other.org");
  const Script interrupted = Login() + Stat(u"9 9") + Top(1, Mail(u"a")) + Client(u"TOP 2 5") +
                             Server(u"half\r\n") + Server(u"a message\r\n") + Client(u"QUIT") +
                             Server(u"is no error\r\n");
  rig.When("TOP 2 5", [&] { rig.run.Next(); });
  rig.Run({interrupted, Login() + Stat(u"of no use") + Quit()});
  EXPECT_EQ(rig.Mails(), Lines{"a#1"});
  EXPECT_EQ(rig.Dialogs(), Lines{});
  EXPECT_EQ(rig.view.Noted("next"), (Lines{"on", "off"}));
  rig.ExpectScriptFollowed();
}

TEST(Buttons, ClosingDuringAQuestionEndsTheRun) {
  CheckRig rig;
  rig.AddAccount(u"pop.example.org", u"ann", u"");
  rig.view.on_credentials = [&](Credentials& typed) {
    typed.password = u"secret";
    rig.view.UnloadWindow();
    return true;
  };
  rig.Run();
  EXPECT_EQ(rig.socket.connected, Lines{});
  EXPECT_TRUE(rig.run.Cancelled());
}

TEST(Buttons, ClosingWhileAFailureIsHandledShowsNoBox) {
  CheckRig rig;
  rig.AddAccount();
  rig.socket.conversations = {Login() + Client(u"STAT") + Fails(kSocketTimedOut, u"Slow.")};
  rig.pump.on_turn = [&](int) {
    const bool failed = rig.socket.Unused() == 0 && rig.socket.State() == SocketState::kClosed;
    if (failed && !rig.view.unloaded) rig.view.UnloadWindow();
  };
  rig.Run();
  EXPECT_EQ(rig.Dialogs(), Lines{});
}

}  // namespace
}  // namespace vesko
