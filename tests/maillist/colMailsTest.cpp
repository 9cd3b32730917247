#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "maillist/colMails.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

const Maildrop kAnn{u"s", 110, u"ann"};

class ColMails : public testing::Test {
 protected:
  ColMails() { mails_.BeginSession(kAnn); }

  colMails::Message Message(const Text& server, const Text& id, int number) {
    auto message = std::make_shared<cMessage>(*locale_);
    message->Server = server;
    message->MessageID = id;
    message->SetIndex(number);
    return message;
  }

  std::unique_ptr<Locale> locale_ = MakeTestLocale(949);
  colMails mails_;
};

TEST_F(ColMails, NamesAndCountsStates) {
  EXPECT_EQ(StatusText(mails_.Counts()), u"0 MAILS (0 NEW MAILS, 0 SPAM MAILS)");
  for (const char* name : {"Mail", "MailRead", "Spam", "SpamRead"}) {
    auto message = Message(u"s", FromAscii(name), 1);
    message->Spam = name[0] == 'S';
    message->Read = std::string(name).ends_with("Read");
    EXPECT_EQ(NameOf(StateOf(*message)), name);
    mails_.Add(message);
  }
  mails_.Add(Message(u"s", u"e", 1));
  EXPECT_EQ(StatusText(mails_.Counts()), u"5 MAILS (3 NEW MAILS, 2 SPAM MAILS)");
}

TEST_F(ColMails, TakesOverTheNumberLastSeenInTheSameMaildrop) {
  const auto first = Message(u"s", u"id", 5);
  first->Read = true;
  mails_.BeginSession(kAnn);
  EXPECT_TRUE(mails_.Add(first));
  EXPECT_FALSE(mails_.Add(Message(u"s", u"id", 6)));
  EXPECT_EQ(first->Index(), 5);  // another message with the same key in one session
  for (const Maildrop& other : {Maildrop{u"s", 110, u"bob"}, Maildrop{u"s", 995, u"ann"}}) {
    mails_.BeginSession(other);
    EXPECT_FALSE(mails_.Add(Message(u"s", u"id", 9)));
    EXPECT_EQ(first->Index(), 5);
  }
  mails_.BeginSession(kAnn);
  EXPECT_FALSE(mails_.Add(Message(u"s", u"id", 3)));
  EXPECT_FALSE(mails_.Add(Message(u"s", u"id", 4)));
  EXPECT_EQ(mails_.Find(u"sid"), first);
  EXPECT_EQ(first->Index(), 3);
  EXPECT_TRUE(first->Read);
}

TEST_F(ColMails, FindsWhatAMaildropIsToDelete) {
  const auto marked = [&](const Maildrop& maildrop) {
    Text ids;
    const colMails::Marked found = mails_.MarkedForDeletion(maildrop);
    for (const auto& message : found.numbered) ids += message->MessageID;
    for (const auto& message : found.gone) ids += u"-" + Text(message->MessageID);
    return ids;
  };
  const auto see = [&](const Maildrop& maildrop, const Text& ids) {
    mails_.BeginSession(maildrop);
    int number = 0;
    for (char16_t id : ids) mails_.Add(Message(maildrop.server, Text(1, id), ++number));
    mails_.CompleteSession(number);
    mails_.ForEach([](cMessage& message) { return message.Spam = true; });
    mails_.MarkSpamForDeletion();
  };
  EXPECT_EQ(marked(kAnn), u"");
  see(kAnn, u"ab");
  see({u"S", 110, u"ann"}, u"c");
  see({u"s", 110, u"bob"}, u"d");
  EXPECT_EQ(marked(kAnn), u"ab");
  EXPECT_EQ(marked({u"S", 110, u"ann"}), u"c");
  EXPECT_EQ(mails_.CountIn(kAnn), 2);
  mails_.Find(u"sa")->Delete = false;
  EXPECT_EQ(marked(kAnn), u"b");
  mails_.ForgetNumbers(kAnn);
  EXPECT_EQ(marked(kAnn), u"");
  EXPECT_EQ(marked({u"s", 110, u"bob"}), u"d");
  see(kAnn, u"ebf");
  EXPECT_EQ(marked(kAnn), u"bef-a");  // in the order in which they were first seen
  mails_.BeginSession(kAnn);
  mails_.Add(Message(u"s", u"a", 4));  // it is back, under a number that was not taken
  EXPECT_EQ(marked(kAnn), u"bef");
  see(kAnn, u"");
  EXPECT_EQ(marked(kAnn), u"-a-b-e-f");
  EXPECT_EQ(mails_.CountIn(kAnn), 0);
  mails_.ClearDeletionMarks();
  EXPECT_EQ(marked(kAnn), u"");
}

TEST_F(ColMails, TellsSpamByKeywords) {
  struct Row {
    const char16_t *from, *subject;
    std::vector<Text> senders, subjects;
    bool spam;
  };
  for (const Row& row : std::vector<Row>{
           {u"xabcx", u"", {u"ABC"}, {}, true},
           {u"a@SPAM.example", u"", {u"no", u"@spam.example"}, {}, true},
           {u"", u"BUY \u00C4\uFF21", {}, {u"buy \u00E4\uFF41"}, true},
           {u"abc", u"abc", {u""}, {u"", u""}, false},  // empty keywords never match
           {u"abc", u"", {}, {u"abc"}, false},          // each list applies to its own field
           {u"", u"abc", {u"abc"}, {}, false},
           {u"ab", u"", {u"abc"}, {}, false},
           {u"", u"", {u"a"}, {u"a"}, false},
       }) {
    auto message = Message(u"s", Decimal(static_cast<int64_t>(mails_.Count())), 1);
    message->From = row.from;
    message->Subject = row.subject;
    EXPECT_EQ(IsSpamMessage(*message, row.senders, row.subjects, *locale_), row.spam);
    message->Spam = !row.spam;  // manual marks do not last
    mails_.Add(message);
    mails_.ApplySpamFilter(row.senders, row.subjects, *locale_);
    EXPECT_EQ(message->Spam, row.spam);
    EXPECT_EQ(mails_.AnySpam(), mails_.Counts().spam > 0);
  }
}

}  // namespace
}  // namespace vesko
