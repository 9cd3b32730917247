#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "maillist/colMails.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

class ColMails : public testing::Test {
 protected:
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
  EXPECT_EQ(StatusText(mails_.Counts(), *locale_), u"0 MAILS (0 NEW MAILS, 0 SPAM MAILS)");
  for (const char* name : {"Mail", "MailRead", "Spam", "SpamRead"}) {
    auto message = Message(u"s", FromAscii(name), 1);
    message->Spam = message->MessageID.starts_with(u"Spam");
    message->Read = message->MessageID.ends_with(u"Read");
    EXPECT_EQ(NameOf(StateOf(*message)), name);
    mails_.Add(message, u"ann");
  }
  mails_.Add(Message(u"s", u"e", 1), u"ann");
  EXPECT_EQ(StatusText(mails_.Counts(), *locale_), u"5 MAILS (3 NEW MAILS, 2 SPAM MAILS)");
}

TEST_F(ColMails, TakesOverTheNumberLastSeenByTheSameAccount) {
  const auto first = Message(u"s", u"id", 5);
  first->Read = true;
  mails_.BeginSession();
  EXPECT_TRUE(mails_.Add(first, u"ann"));
  EXPECT_FALSE(mails_.Add(Message(u"s", u"id", 6), u"ann"));
  EXPECT_EQ(first->Index(), 5);  // another message of the same name in one session
  mails_.BeginSession();
  EXPECT_FALSE(mails_.Add(Message(u"s", u"id", 9), u"bob"));
  EXPECT_EQ(first->Index(), 5);  // a number of another mailbox
  EXPECT_FALSE(mails_.Add(Message(u"s", u"id", 3), u"ann"));
  EXPECT_FALSE(mails_.Add(Message(u"s", u"id", 4), u"ann"));
  EXPECT_EQ(mails_.Find(u"sid"), first);
  EXPECT_EQ(first->Index(), 3);
  EXPECT_TRUE(first->Read);
}

TEST_F(ColMails, FindsWhatAnAccountIsToDelete) {
  const char16_t* rows[][2] = {{u"s", u"ann"}, {u"S", u"ann"}, {u"s", u"bob"}, {u"s", u"ann"}};
  for (const auto& row : rows) {
    const auto number = static_cast<int>(mails_.Count() + 1);
    mails_.Add(Message(row[0], Decimal(number), number), row[1]);
  }
  EXPECT_TRUE(mails_.MarkedForDeletion(u"s", u"ann").empty());
  mails_.Find(u"s4")->Spam = true;
  mails_.MarkSpamForDeletion();
  mails_.Find(u"s1")->Delete = mails_.Find(u"S2")->Delete = mails_.Find(u"s3")->Delete = true;
  const auto marked = mails_.MarkedForDeletion(u"s", u"ann");
  ASSERT_EQ(marked.size(), 2u);
  EXPECT_EQ(marked[0]->Index(), 1);
  EXPECT_EQ(marked[1]->Index(), 4);
  mails_.ClearDeletionMarks();
  EXPECT_TRUE(mails_.MarkedForDeletion(u"s", u"ann").empty());
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
           {u"abc", u"", {}, {u"abc"}, false},          // each list has its own field
           {u"", u"abc", {u"abc"}, {}, false},
           {u"ab", u"", {u"abc"}, {}, false},
           {u"", u"", {u"a"}, {u"a"}, false},
       }) {
    auto message = Message(u"s", Decimal(static_cast<int64_t>(mails_.Count())), 1);
    message->From = row.from;
    message->Subject = row.subject;
    EXPECT_EQ(IsSpamMessage(*message, row.senders, row.subjects, *locale_), row.spam);
    message->Spam = !row.spam;  // marks by hand do not last
    mails_.Add(message, u"ann");
    mails_.ApplySpamFilter(row.senders, row.subjects, *locale_);
    EXPECT_EQ(message->Spam, row.spam);
    EXPECT_EQ(mails_.AnySpam(), mails_.Counts().spam > 0);
  }
}

}  // namespace
}  // namespace vesko
