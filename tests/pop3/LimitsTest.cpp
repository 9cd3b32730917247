#include <gtest/gtest.h>

#include "pop3/CheckRig.h"
#include "support/FailingAllocation.h"

namespace vesko {
namespace {

TEST(Limits, EndsASessionWhoseReplyIsTooLong) {
  for (int surplus : {0, 1}) {
    CheckRig rig;
    rig.AddAccount();
    const Text status = u"+OK\r\n";
    const Text mail = Mail(u"a");
    const size_t most = status.size() + mail.size() + 3;
    rig.socket.bytes_per_character = kLongestReply / most;
    const Text text = mail + Text(static_cast<size_t>(surplus), u'x');
    Script script = Login() + Stat(u"2 9") + Top(1, mail);  // the limit applies to each reply
    if (surplus == 0) {
      script = script + Top(2, text) + Quit();
    } else {
      script = script + Client(u"TOP 2 5") + Server(status + text + u".\r\n");
    }
    rig.Run({script});
    const Lines refused = {"error: POP3 Error: the reply is too long [pop.example.org]",
                           Asked("TOP 2 5")};
    EXPECT_EQ(rig.Dialogs(), surplus == 0 ? Lines{} : refused);
    EXPECT_EQ(rig.Mails(), Lines{"a#1"});
    rig.ExpectScriptFollowed();
  }
}

TEST(Limits, EndsARefusalThatIsTooLong) {
  CheckRig rig;
  rig.AddAccount();
  rig.socket.bytes_per_character = kLongestReply / 32;
  rig.socket.piece_size = 1;
  rig.Run({Server(u"+OK\r\n") + Client(u"USER ann") + Server(u"-ERR" + Text(29, u'x'))});
  EXPECT_EQ(rig.Dialogs(), (Lines{"error: POP3 Error: the reply is too long [pop.example.org]",
                                  Asked("USER ann")}));
}

// --- No memory --------------------------------------------------------------------------------

/// A deletion followed by a check of two messages, one of them new.
void Arrange(CheckRig& rig) {
  rig.AddAccount();
  rig.AddMarked({{u"a", 1}, {u"b", 2}, {u"c", 3}}, 3);
  rig.Find(u"b").Delete = false;
  rig.socket.conversations = {Login() + Stat(u"3 9") + Dele(1) + Dele(3) + Quit(),
                              Mailbox({Mail(u"b"), Mail(u"d")})};
}

/// Whatever has happened, the next deletion must not name a wrong message.
void ExpectOnlySpamToGo(CheckRig& rig) {
  const bool committed = rig.socket.sent.size() > 5 && rig.socket.sent[5] == "QUIT";
  rig.view.log.clear();
  rig.socket.sent.clear();
  rig.mails.ClearDeletionMarks();
  rig.mails.ForEach([](cMessage& message) {
    message.Delete = message.Spam && Trim(Text(message.Subject)) != u"b";
    return true;
  });
  const Script check = committed ? Mailbox({Mail(u"b"), Mail(u"d")}) : Mailbox({});
  rig.socket.conversations = {check};
  if (!committed) {
    rig.socket.conversations.push_front(Login() + Stat(u"3 9") + Dele(1) + Dele(3) + Quit());
  }
  rig.Run();
  EXPECT_EQ(rig.Dialogs(), Lines{});
  EXPECT_EQ(rig.socket.faults, Lines{});
}

TEST(Limits, OutOfMemoryEndsTheRunAndNothingElse) {
  for (auto kind : {FailingAllocation::kOnce, FailingAllocation::kLasting}) {
    size_t n = 0;
    for (bool happened = true; happened && !HasFailure();) {
      SCOPED_TRACE(++n);
      CheckRig rig;
      Arrange(rig);
      {
        const FailingAllocation failing(n, kind);
        rig.Run();
        happened = FailingAllocation::Happened();
      }
      EXPECT_EQ(rig.socket.State(), SocketState::kClosed);
      if (kind == FailingAllocation::kLasting) continue;  // the window cannot be closed either
      EXPECT_TRUE(rig.view.unloaded);
      rig.socket.faults.clear();
      ExpectOnlySpamToGo(rig);
    }
    EXPECT_GT(n, 200u);  // allocations
  }
}

}  // namespace
}  // namespace vesko
