#include <gtest/gtest.h>

#include <algorithm>

#include "pop3/CheckRig.h"

namespace vesko {
namespace {

/// A check of one account as a script.
struct Conversation {
  const char* name;
  std::vector<Script> connections;
  Lines dialogs{};  // the retry question is answered with no
  Lines mails{};
};

std::string Box(const std::string& text) { return "error: " + text + " [pop.example.org]"; }

const Text kNo = u"-ERR no\r\n";
const std::string kNoBox = Box("POP3 Error: -ERR no\r\n");

Script Fetched(const Text& stat_reply) { return Login() + Stat(stat_reply); }

std::vector<Conversation> Conversations() {
  const Script one = Mailbox({Mail(u"a")});
  const Script user = Server(u"+OK\r\n") + Client(u"USER ann");
  const Script stat = Login() + Client(u"STAT");
  const Script second = Fetched(u"2 9") + Top(1, Mail(u"a")) + Client(u"TOP 2 5");
  return {
      {"one message twice", {Mailbox({Mail(u"a"), Mail(u"a")})}, {}, {"a#1"}},
      {"malformed date keeps the message",
       {Mailbox({u"Subject: a\r\nDate: nonsense\r\n\r\n", Mail(u"b")})},
       {},
       {"a#1", "b#2"}},
      {"empty and strange contents",
       {Mailbox({u"", u"\r\n", Text(u"\0\xFF\xD800:\n..\n.\r.\r\n", 13), Mail(u"d")})},
       {},
       {"#1", "d#4"}},  // of those without an identifier the first is kept
      {"count without a space behind it", {Fetched(u"3") + Quit()}},
      {"count that is no number", {Fetched(u"many 9") + Quit()}},
      {"count above 16 bits", {Fetched(u"32768 9") + Quit()}},
      {"count rounded to even", {Fetched(u"0.5 9") + Quit()}},
      {"shortest replies", {stat + Server(u"+\r\n") + Quit()}},
      {"greeting refused, then retried unasked", {Server(kNo), one}, {kNoBox}, {"a#1"}},
      {"user refused without a box", {user + Server(kNo)}, {Asked("USER ann")}},
      {"password refused without a box",
       {user + Server(u"+OK\r\n") + Client(u"PASS secret") + Server(kNo)},
       {Asked("PASS ******")}},
      {"STAT refused", {stat + Server(kNo)}, {kNoBox, Asked("STAT")}},
      {"refusal that repeats the password",
       {stat + Server(u"-ERR secret, PASS SeCrEt and secre\r\n")},
       {Box("POP3 Error: -ERR ******, PASS ****** and secre\r\n"), Asked("STAT")}},
      {"refusal without a line end",
       {stat + Server(u"-ERR \xE9") + PeerCloses()},
       {Box("POP3 Error: -ERR ?"), Asked("STAT")}},
      {"TOP refused is waited out", {second + Server(kNo)}, {Asked("TOP 2 5")}, {"a#1"}},
      {"QUIT refused", {Fetched(u"0 0") + Client(u"QUIT") + Server(kNo)}, {kNoBox}},
      {"QUIT not answered", {Fetched(u"0 0") + Client(u"QUIT")}},
      {"closed within a message",
       {second + Server(u"+OK\r\nSubject: b") + PeerCloses()},
       {Asked("TOP 2 5")},
       {"a#1"}},
      {"closed behind the whole message",
       {Fetched(u"1 9") + Top(1, Mail(u"a")) + Client(u"QUIT") + PeerCloses()},
       {},
       {"a#1"}},
      {"closed by a silent server, then retried unasked", {PeerCloses(), one}, {}, {"a#1"}},
      {"reset",
       {stat + Fails(kSocketConnectionReset, u"Gone.")},
       {Box("Winsock Error: #10054\r\nGone."), Asked("STAT")}},
      {"refused, then retried unasked",
       {Fails(kSocketConnectionRefused, u"No."), one},
       {Box("Winsock Error: #10061\r\nNo.")},
       {"a#1"}},
      {"no such host asks unsent", {Fails(kSocketHostNotFound, u"Who?")}, {Box("Who?"), Asked("")}},
  };
}

size_t ServerText(const Conversation& conversation) {
  size_t most = 0;
  for (const Script& script : conversation.connections) {
    size_t size = 0;
    for (const Step& step : script.steps) {
      if (step.kind == Step::Kind::kServer) size += step.text.size();
    }
    most = std::max(most, size);
  }
  return most;
}

void ExpectAsWritten(const Conversation& conversation, size_t piece, size_t cut = 0,
                     bool closes_with_last_piece = false) {
  CheckRig rig;
  rig.AddAccount();
  rig.socket.conversations.assign(conversation.connections.begin(), conversation.connections.end());
  rig.socket.piece_size = piece;
  if (cut != 0) rig.socket.cut_at = cut;
  rig.socket.closes_with_last_piece = closes_with_last_piece;
  rig.Run();
  EXPECT_EQ(rig.Dialogs(), conversation.dialogs);
  EXPECT_EQ(rig.Mails(), conversation.mails);
  rig.ExpectScriptFollowed();
  EXPECT_EQ(rig.socket.State(), SocketState::kClosed);
  EXPECT_TRUE(rig.view.unloaded);
}

TEST(Conversation, GoesAsWrittenHoweverItIsCut) {
  for (const Conversation& conversation : Conversations()) {
    SCOPED_TRACE(conversation.name);
    for (size_t piece : {Text::npos, size_t{1}, size_t{2}, size_t{3}, size_t{7}}) {
      SCOPED_TRACE(piece);
      ExpectAsWritten(conversation, piece);
    }
    ExpectAsWritten(conversation, Text::npos, 0, true);
    for (size_t cut = 1; cut < ServerText(conversation); ++cut) {
      SCOPED_TRACE(cut);
      ExpectAsWritten(conversation, Text::npos, cut);
      if (HasFailure()) return;
    }
    if (HasFailure()) return;
  }
}

TEST(Conversation, GoesOnWhereACommandCannotBeSent) {
  for (size_t send = 0; send < 6; ++send) {
    CheckRig rig;
    rig.AddAccount();
    rig.socket.conversations = {Mailbox({Mail(u"a"), Mail(u"b")})};
    rig.socket.failing_send = send;
    rig.Run();
    EXPECT_EQ(rig.mails.Count(), send < 4 ? 0 : send - 3);
    EXPECT_EQ(rig.Dialogs().size(),
              send < 5 ? 1 : 0);  // a QUIT that cannot be sent ends the session, too
    EXPECT_LT(rig.clock.now, 1000 + 21);
  }
}

}  // namespace
}  // namespace vesko
