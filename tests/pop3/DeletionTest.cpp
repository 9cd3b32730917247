#include <gtest/gtest.h>

#include "pop3/CheckRig.h"

namespace vesko {
namespace {

/// Two marked messages in ann's mailbox, one unmarked, and a marked one in bob's on the same
/// server.
struct DeletionRig : CheckRig {
  DeletionRig() {
    AddAccount();
    AddMarked({{u"a", 3}, {u"b", 5}, {u"kept", 1}}, 9);
    Find(u"kept").Spam = Find(u"kept").Delete = false;
    AddMarked({{u"c", 7}}, 9, {u"pop.example.org", 995, u"bob"});
  }

  ~DeletionRig() { ExpectScriptFollowed(); }
};

TEST(Deletion, DeletesByNumberWhatTheAccountFetched) {
  for (const Text count : {u"9", u"10", u"many"}) {  // only a smaller count stops it
    DeletionRig rig;
    rig.Run({Login() + Stat(count + u" 9") + Dele(3) + Dele(5) + Quit(), Mailbox({})});
    EXPECT_EQ(rig.Mails(), (Lines{"kept#1", "c#7"}));
    EXPECT_EQ(rig.Dialogs(), Lines{});
    EXPECT_EQ(rig.view.Noted("caption")[0], "Deleting SPAM mail of 'pop.example.org' ...");
    EXPECT_EQ(rig.view.Noted("value"), (Lines{"0", "1", "2"}));
  }
}

TEST(Deletion, NeedsASpamMarkSomewhereAndConnectsOnlyWhereNeeded) {
  for (bool spam : {false, true}) {
    CheckRig rig;
    rig.AddAccount();
    rig.AddMarked({{u"a", 3}, {u"b", 4}}, 4);
    rig.Find(u"a").Delete = !spam;
    rig.Find(u"b").Delete = rig.Find(u"a").Spam = false;
    rig.Find(u"b").Spam = spam;
    rig.Run({Mailbox({})});
    EXPECT_EQ(rig.mails.Count(), 2u);
    EXPECT_EQ(rig.socket.Unused(), 0u);
    EXPECT_EQ(rig.view.Noted("progress")[0] == "Connecting to 'pop.example.org' ...", spam);
  }
}

TEST(Deletion, KeepsMessagesWhereTheSessionFailed) {
  DeletionRig rig;
  rig.Run({Login() + Stat(u"9 9") + Dele(3) + Client(u"DELE 5") + Server(u"-ERR\r\n"),
           Mailbox({Mail(u"b")})});
  EXPECT_EQ(rig.Mails(), (Lines{"a#3", "b#1", "kept#1", "c#7"}));  // the check still runs
  EXPECT_TRUE(rig.Find(u"a").Delete);
}

// --- Stopped by the user ----------------------------------------------------------------------

TEST(Deletion, StoppedAfterALogoutTrustsNoNumberUntilTheNextCompleteCheck) {
  for (bool next : {false, true}) {
    SCOPED_TRACE(next);
    DeletionRig rig;
    // The second reply is slow, but the server receives both commands and the logout.
    rig.socket.conversations = {Login() + Stat(u"9 9") + Dele(3) + Client(u"DELE 5") +
                                Client(u"QUIT")};
    if (next) {  // the check that follows fails
      rig.socket.conversations[0] = rig.socket.conversations[0] + After(1) + PeerCloses();
      rig.socket.conversations.push_back(Login() + Client(u"STAT") + PeerCloses());
    }
    rig.When("DELE 5", [&] { next ? rig.run.Next() : rig.run.Cancel(); });
    rig.Run();
    EXPECT_EQ(rig.Mails(), (Lines{"b#5", "kept#1", "c#7"}));

    rig.Run({Mailbox({Mail(u"kept"), Mail(u"new")})});  // no deletion
    EXPECT_EQ(rig.Mails(), (Lines{"b#5", "kept#1", "c#7", "new#2"}));

    rig.Find(u"new").Spam = rig.Find(u"new").Delete = true;
    rig.Run({Login() + Stat(u"2 9") + Dele(2) + Quit(), Mailbox({Mail(u"kept")})});
    EXPECT_EQ(rig.Mails(), (Lines{"kept#1", "c#7"}));
  }
}

TEST(Deletion, TakesTheAnswerThatComesAfterTheLogout) {
  for (bool accepted : {true, false}) {
    DeletionRig rig;
    rig.AddAccount(u"pop.other.org");
    rig.When("DELE 5", [&] { rig.run.Next(); });
    rig.Run({Login() + Stat(u"9 9") + Dele(3) + Client(u"DELE 5") + Client(u"QUIT") +
                 Server(accepted ? u"+O" : u"-E") + Server(u"K\r\n"),
             Mailbox({Mail(u"kept")}), Mailbox({})});
    EXPECT_EQ(rig.Mails(), accepted ? (Lines{"kept#1", "c#7"}) : (Lines{"b#5", "kept#1", "c#7"}));
  }
}

TEST(Deletion, StoppedWithoutALogoutChangesNothing) {
  DeletionRig rig;
  rig.When("DELE 5", [&] { rig.view.UnloadWindow(); });
  rig.Run({Login() + Stat(u"9 9") + Dele(3) + Client(u"DELE 5")});
  EXPECT_EQ(rig.Mails(), (Lines{"a#3", "b#5", "kept#1", "c#7"}));
  rig.Run({Login() + Stat(u"9 9") + Dele(3) + Dele(5) + Quit(), Mailbox({})});
  EXPECT_EQ(rig.Mails(), (Lines{"kept#1", "c#7"}));
}

// --- Whose numbers they are, and since when ---------------------------------------------------

TEST(Deletion, KnowsMailboxesOfOneUserByTheirPorts) {
  CheckRig rig;
  rig.AddAccount();
  rig.AddAccount(u"pop.example.org", u"ann", u"secret", u"1995");
  rig.AddMarked({{u"a", 2}}, 3);
  rig.AddMarked({{u"b", 1}}, 3, {u"pop.example.org", 1995, u"ann"});
  rig.Run({Login() + Stat(u"3 9") + Dele(2) + Quit(), Login() + Stat(u"3 9") + Dele(1) + Quit(),
           Mailbox({}), Mailbox({})});
  EXPECT_EQ(rig.socket.connected[0], "pop.example.org:995");
  EXPECT_EQ(rig.socket.connected[1], "pop.example.org:1995");
  EXPECT_EQ(rig.mails.Count(), 0u);
  EXPECT_EQ(rig.socket.faults, Lines{});
}

TEST(Deletion, GoesOnWhereTheUserGivesAnAccountAnotherPort) {
  CheckRig rig;
  rig.AddAccount(u"pop.example.org", u"ann", u"secret", u"110");
  rig.AddMarked({{u"a", 3}}, 3);  // seen by way of port 995
  rig.Run({Mailbox({Mail(u"a")}), Login() + Stat(u"1 9") + Dele(1) + Quit(), Mailbox({})});
  EXPECT_EQ(rig.Mails(), Lines{"a#1"});
  rig.Run();
  EXPECT_EQ(rig.Mails(), Lines{});
  rig.ExpectScriptFollowed();
}

TEST(Deletion, SendsNothingForWhatIsGoneFromTheServer) {
  for (bool all_gone : {true, false}) {
    DeletionRig rig;
    // Another program has emptied the mailbox, and new mail has arrived.
    rig.mails.ClearDeletionMarks();
    rig.Run({Mailbox({all_gone ? Mail(u"x") : Mail(u"b"), Mail(u"y")})});
    rig.mails.MarkSpamForDeletion();
    rig.socket.conversations = {Mailbox({Mail(u"y")})};
    if (!all_gone) {
      rig.socket.conversations.push_front(Login() + Stat(u"2 9") + Dele(1) + Quit());
    }
    rig.Run();
    Lines left = {"kept#1", "c#7", "y#1"};
    if (all_gone) left.insert(left.begin() + 2, "x#1");
    EXPECT_EQ(rig.Mails(), left);
    EXPECT_EQ(rig.Dialogs(), Lines{});
  }
}

TEST(Deletion, LogsOutWhereTheMailboxHasShrunk) {
  DeletionRig rig;
  rig.Run({Login() + Stat(u"8 9") + Quit(), Server(u"-ERR\r\n")});
  EXPECT_EQ(rig.Dialogs()[0],
            "error: The mailbox has changed since it was checked. Nothing was deleted; please look "
            "at the list again. [pop.example.org]");
  EXPECT_EQ(rig.Mails(), (Lines{"a#3", "b#5", "kept#1", "c#7"}));
  EXPECT_TRUE(rig.Find(u"a").Delete && rig.Find(u"a").Spam);

  rig.Run({Mailbox({Mail(u"b"), Mail(u"new")})});  // the check after the box has failed
  rig.Run({Login() + Stat(u"2 9") + Dele(1) + Quit(), Mailbox({Mail(u"new")})});
  EXPECT_EQ(rig.Mails(), (Lines{"kept#1", "c#7", "new#1"}));
}

TEST(Deletion, TrustsAnUnfinishedCheckOnlyToTellThatNumbersMoved) {
  struct Row {
    const char* name;
    Script seen;        // by a check that is then interrupted
    bool numbers_hold;  // those of the complete check before it
  };
  const auto stat = [](const Text& count) {
    return Login() + Stat(count + u" 9") + Client(u"TOP 1 5");
  };
  const auto first = [&](const Text& name) {
    return Login() + Stat(u"9 9") + Top(1, Mail(name)) + Client(u"TOP 2 5");
  };
  const Row rows[] = {
      {"nothing", Login() + Client(u"STAT"), true},
      {"the mailbox grew", stat(u"12"), true},
      {"the mailbox shrank", stat(u"8"), false},
      {"the first is as it was", first(u"kept"), true},
      {"another is the first", first(u"b"), false},
      {"a new one is the first", first(u"new"), false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    DeletionRig rig;
    rig.mails.ClearDeletionMarks();
    rig.Run({row.seen + Fails(kSocketConnectionReset, u"Gone.")});
    rig.mails.MarkSpamForDeletion();
    rig.socket.conversations = {Mailbox({})};
    if (row.numbers_hold) {
      rig.socket.conversations.push_front(Login() + Stat(u"9 9") + Dele(3) + Dele(5) + Quit());
    }
    rig.Run();
    EXPECT_EQ(rig.mails.Count() < 3, row.numbers_hold);
  }
}

TEST(Deletion, WaitsForACompleteCheckOfWhatOnlyAnUnfinishedOneSaw) {
  CheckRig rig;
  rig.AddAccount();
  rig.Run({Login() + Stat(u"2 9") + Top(1, Mail(u"a")) + Client(u"TOP 2 5") + PeerCloses()});
  rig.Find(u"a").Spam = rig.Find(u"a").Delete = true;
  rig.Run({Mailbox({Mail(u"a"), Mail(u"b")})});
  EXPECT_EQ(rig.Mails(), (Lines{"a#1", "b#2"}));
  rig.Run({Login() + Stat(u"2 9") + Dele(1) + Quit(), Mailbox({Mail(u"b")})});
  EXPECT_EQ(rig.Mails(), (Lines{"b#1"}));
  EXPECT_EQ(rig.socket.faults, Lines{});
}

}  // namespace
}  // namespace vesko
