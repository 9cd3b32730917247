#include <gtest/gtest.h>

#include <random>

#include "message/cEncode.h"
#include "message/cMessage.h"
#include "support/ErrorOf.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

const Text kHangulWord = u"=?euc-kr?B?sKGzqg==?=";  // U+AC00 U+B098
const Text kEmptyWord = Text(u"=?x?B?").append(u"?=");
constexpr TextView kHangul = u"\uAC00\uB098";

class MessageTest : public ::testing::Test {
 protected:
  cMessage Parse(const Text& text) {
    cMessage message(*locale_), same(*locale_);
    message.CreateFromText(text);
    same.CreateFromCompactText(text);
    EXPECT_EQ(same.Size(), message.Size());
    EXPECT_TRUE(same.Headers == message.Headers && same.MessageBody == message.MessageBody &&
                same.Subject == message.Subject && same.Sender == message.Sender);
    return message;
  }

  // A message with this header and no body.
  cMessage ParseHeader(const Text& header) { return Parse(header + u"\r\n\r\n"); }

  std::unique_ptr<Locale> locale_ = MakeTestLocale(949);
};

TEST_F(MessageTest, WithoutABlankLineThereIsNothingButTheSize) {
  for (const Text text : {u"Subject: a", u"", u"Subject: a\r\n", u"Subject: a\n\n", u"a\r\n\r"}) {
    cMessage message = Parse(text);
    EXPECT_EQ(message.Size(), static_cast<int32_t>(text.size() * 2));
    EXPECT_TRUE(message.Headers.empty() && message.MessageBody.empty() && message.Subject.empty());
  }
}

TEST_F(MessageTest, TakesHeaderAndBodyApartAtTheFirstBlankLine) {
  cMessage message = Parse(u"Subject: a\r\nX: b\r\n\r\nbody\r\n\r\nmore\r\n");
  EXPECT_EQ(message.Headers, u"Subject: a\r\nX: b");
  EXPECT_EQ(message.MessageBody, u"body\r\n\r\nmore\r\n");
  EXPECT_EQ(Parse(u"\r\n\r\n").Headers, u"");
}

TEST_F(MessageTest, StoresEveryKnownField) {
  using M = cMessage;
  const struct {
    const char* names;
    std::vector<CompactText cMessage::*> members;
    Text stored;
  } kCases[] = {
      {"Return-Path RECEIVED Sender Message-ID In-Reply-To References Keywords Comments encrypted",
       {&M::ReturnPath, &M::Received, &M::Sender, &M::MessageID, &M::InReplyTo, &M::References,
        &M::Keywords, &M::Comments, &M::Encrypted},
       u"\"v\" ?Q?=41?"},
      {"Reply-To to CC Bcc sUBJECT",
       {&M::ReplyTo, &M::MessageTo, &M::CC, &M::BCC, &M::Subject},
       u"A "},
      {"From", {&M::From}, u"A"},
  };
  const Text value = u"\"v\" ?Q?=41?";
  for (const auto& row : kCases) {
    std::vector<Text> names = Split(FromAscii(row.names), u" ");
    for (size_t i = 0; i < names.size(); ++i) {
      EXPECT_EQ(ParseHeader(names[i] + u": " + value).*row.members[i], row.stored);
      EXPECT_EQ(ParseHeader(names[i] + u" : " + value).*row.members[i], u"");
      EXPECT_EQ(ParseHeader(u"X-" + names[i] + u":" + value).*row.members[i], u"");
    }
  }
  EXPECT_EQ(ParseHeader(u"Date:2 Jan 2001 03:04:05 +0100").SendDate, u"02/01/2001 03:04 ");
}

TEST_F(MessageTest, UnfoldsLineByLine) {
  const struct {
    const char* name;
    Text header;
    CompactText cMessage::*member;
    Text stored;
  } kCases[] = {
      {"folded subject", u"Subject: Hello\r\n World", &cMessage::Subject, u"Hello World "},
      {"tabs within a value", u"Subject: a\t\tb\r\n c\td", &cMessage::Subject, u"a  b c d "},
      {"repeated to", u"To: a\r\nX: y\r\nTo: b", &cMessage::MessageTo, u"a b "},
      {"folded from", u"From: a\r\n <b@c.example>", &cMessage::From, u"<b@c.example>"},
      {"emptied", u"Comments: a\r\nComments:", &cMessage::Comments, u""},
      {"received with a time", u"Received: a\r\nReceived: b\r\n for c; 10:22\r\n d",
       &cMessage::Received, u"b"},
      {"continuation first", u" a\r\nSubject: b", &cMessage::Subject, u"b "},
      {"behind an unknown field", u"Subject: a\r\nX-A: b\r\n c", &cMessage::Subject, u"a "},
      {"behind a colon", u"Subject: a\r\n b:\r\n c", &cMessage::Subject, u"a "},
      {"empty continuation", u"Subject: a\r\n \r\n b", &cMessage::Subject, u"a  b "},
      {"lone ends of line", u"Subject: a\r b\n c", &cMessage::Subject, u"a\r b\n c "},
      {"known name behind a space", u"X: a\r\n Subject: b", &cMessage::Subject, u""},
      {"wide letters", u"\uFF33ubject: a", &cMessage::Subject, u""},
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(ParseHeader(row.header).*row.member, row.stored) << row.name;
  }
}

TEST_F(MessageTest, ParsingAgainAppendsAndLeavesTheMarks) {
  cMessage message = ParseHeader(u"Subject: a\r\nFrom: a\r\nSender: a");
  EXPECT_THROW(message.Index(), RunTimeError) << "must be set first";
  message.Read = message.Spam = message.Delete = true;
  message.Server = u"pop.example";
  message.SetIndex(7);
  message.CreateFromText(u"Subject: b\r\nFrom: b\r\n\r\n");
  EXPECT_EQ(message.Subject, u"a b ");
  EXPECT_EQ(message.From, u"b");
  EXPECT_EQ(message.Sender, u"a");
  EXPECT_TRUE(message.Read && message.Spam && message.Delete);
  EXPECT_EQ(message.Server, u"pop.example");
  EXPECT_EQ(message.Index(), 7);
}

TEST_F(MessageTest, AMalformedDateLeavesTheFieldsBeforeIt) {
  const Text bad_dates[] = {u"",        u"1 Jan",          u"2 Jan 2001 10:22 +0900\r\n (KST)",
                            kEmptyWord, u"=?x?Q?=FF=FF?=", u"1 Jan xx"};
  for (const Text& date : bad_dates) {
    cMessage message(*locale_);
    Text text = u"Sender: s\r\nSender: t\r\nFrom: f\r\nSubject: a\r\n b\r\nDate: " + date +
                u"\r\nTo: z\r\n\r\nbody";
    EXPECT_EQ(ErrorOf([&] { message.CreateFromText(text); }),
              date == u"1 Jan xx" ? kTypeMismatch : kSubscriptOutOfRange);
    EXPECT_EQ(Join({message.Sender, message.From, message.Subject}, u""), u"tfa b ");
    EXPECT_EQ(message.MessageTo, u"");
    EXPECT_EQ(message.MessageBody, u"body");
  }
}

TEST_F(MessageTest, DecodesTheFirstEncodedWordOfAValue) {
  const struct {
    const char* name;
    Text value, field, decoded;
  } kCases[] = {
      {"base64", kHangulWord, u"subject", Text(kHangul) + u" "},
      {"quoted", u"a =?x?Q?b_=3D?= c ?B?QQ==? d", u"to", Text(u"A d")},
      {"quoted alone", u"a =?x?Q?b_=3D?= c d", u"to", u"b = c d"},
      {"name and address", u"\"" + kHangulWord + u"\" <\"a\"@b.example>", u"from",
       Text(kHangul) + u" <a@b.example>"},
      {"quotes of a name", u"\"A B\" <a@b>", u"reply-to", u"A B <a@b> "},
      {"second word stays", kHangulWord + u" " + kHangulWord, u"subject",
       Text(kHangul) + u" " + kHangulWord},
      {"space in the word", u"=?x?Q?a b?= c", u"subject", u"a b c"},
      {"marker over a line end", u"?\r\nB?QUJD?", u"subject", u"ABC "},
      {"lower-case marker", u"=?x?q?a_b?=", u"subject", u"=?x?q?a_b?= "},
      {"empty word", kEmptyWord + u" rest", u"subject", u" "},
      {"open word", u"=?x?B?QUJD rest", u"subject", u" "},
      {"beyond the code page", u"=?x?Q?=FF=FF?= rest", u"subject", u" "},
      {"encoded date", u"=?x?Q?1_Jan_2001_10:22?= rest", u"date", u"01/01/2001 10:22 rest"},
  };
  cMessage message(*locale_);
  for (const auto& row : kCases) {
    EXPECT_EQ(message.DecodeHeader(row.value, row.field), row.decoded) << row.name;
  }
}

TEST_F(MessageTest, DecodesTextPartsUpToTheLastBlankLine) {
  const Text type = u"\r\nContent-Type: text/plain; charset=x";
  const Text base64 = u"\r\nContent-Transfer-Encoding: base64";
  const Text quoted = u"\r\nContent-Transfer-Encoding: Quoted-Printable";
  const struct {
    const char* name;
    Text text, decoded;
  } kCases[] = {
      {"no blank line", u"A: b" + type, u""},
      {"first line", u"Content-Type: text/plain;\r\n\r\nbody\r\n\r\n", u""},
      {"body without a blank line", type + base64 + u"\r\n\r\nQUJD\r\n", u"\r\n"},
      {"capitals", type + quoted + u"\r\n\r\na=3D_\r\nb\r\n\r\n", u"a= \r\nb\r\n"},
      {"no encoding", type + u"\r\n\r\na=3D\r\n\r\n", u"a=3D\r\n"},
      {"unknown encoding", type + base64 + u"x\r\n\r\nQUJD\r\n\r\n", u"QUJD\r\n"},
      {"beyond the code page", type + quoted + u"\r\n\r\n=FF=FF\r\n\r\n", u"=FF=FF\r\n"},
      {"no space", type + u"\r\nContent-Transfer-Encoding:base64\r\n\r\nQUJD\r\n\r\n", u"QUJD\r\n"},
      {"no semicolon", u"\r\nContent-Type: text/plain\r\n\r\nbody\r\n\r\n", u""},
      {"html", u"\r\nContent-Type: text/html;\r\n\r\n<b>\r\n\r\n", u"<b>\r\n"},
      {"two parts",
       u"A: b" + type + u"\r\n\r\nab\r\n\r\nlost\r\n--x" + type + base64 +
           u"\r\n\r\nQUJD\r\n\r\n--x--\r\n",
       u"ab\r\nABC\r\n"},
  };
  cMessage message(*locale_);
  for (const auto& row : kCases) {
    EXPECT_EQ(message.DecodeMessage(row.text), row.decoded) << row.name;
  }
}

TEST_F(MessageTest, DecodesTheBodyOnlyWhereContentTypeStandsInItsExactCase) {
  EXPECT_EQ(Parse(u"content-type: text/plain;\r\n\r\nbody").MessageBody, u"body");
  EXPECT_EQ(Parse(u"X: y\r\n\r\nsee Content-Type: there").MessageBody, u"");
  EXPECT_EQ(Parse(u"X: y\r\nContent-Type: text/plain;\r\n\r\nbody").MessageBody, u"\r\n");
}

// The same walk over the parts in its simplest form, to compare with.
Text DecodePlainly(Text t) {
  Text out;
  auto mid = [&t](size_t first, size_t last) { return t.substr(first - 1, last - first + 1); };
  auto find = [&t](const Text& what, size_t from) { return t.find(what, from - 1) + 1; };
  while (!t.empty()) {
    size_t a = find(u"\r\nContent-", 1);
    size_t b = a == 0 ? 0 : find(u"\r\n\r\n", a);
    if (b == 0) break;
    size_t c = find(u"\r\nContent-", b);
    size_t e = t.rfind(u"\r\n\r\n", c == 0 ? Text::npos : c - 1) + 1;
    Text ph = mid(a + 2, b + 4);
    Text pb = b + 4 < e - 1 ? mid(b + 4, e - 1) : Text();
    if (Contains(ph, u"text/plain;")) out += pb + u"\r\n";
    t = t.substr((pb.empty() ? b + 4 : e - 1) - 1);
  }
  return out;
}

TEST_F(MessageTest, WalksOverPartsAsThePlainWalkDoes) {
  const Text kPieces[] = {u"\r\n",        u"\r\n\r\n", u"Content-", u"\r\nContent-",
                          u"text/plain;", u"a",        u"\r",       u"\n"};
  std::mt19937 random(4);
  cMessage message(*locale_);
  for (int round = 0; round < 5000; ++round) {
    Text text;
    for (size_t i = random() % 30; i > 0; --i) text += kPieces[random() % std::size(kPieces)];
    ASSERT_EQ(message.DecodeMessage(text), DecodePlainly(text)) << ::testing::PrintToString(text);
  }
}

Text Repeat(const Text& piece, size_t count) { return Join(std::vector<Text>(count, piece), u""); }

// Each of these would take hours if any step were quadratic.
TEST_F(MessageTest, TakesLinearTimeForHostileMail) {
  constexpr size_t kMany = 100'000;
  const Text plain = u"\r\nContent-Type: text/plain;\r\n\r\n";
  EXPECT_EQ(ParseHeader(u"Subject: " + Text(20 * kMany, u'?')).Subject.size(), 20 * kMany + 1);
  EXPECT_EQ(ParseHeader(Repeat(u"To: a\r\n", kMany) + u"X:").MessageTo.size(), 2 * kMany);
  EXPECT_EQ(ParseHeader(Repeat(u"From: a\r\n b\r\n", kMany) + u"X:").From, u"b");
  EXPECT_EQ(ParseHeader(Repeat(u"Subject\r\n", kMany) + u"X:").Subject, u"");
  EXPECT_EQ(Parse(Repeat(plain, kMany)).MessageBody.size(), 2 * kMany);
  EXPECT_EQ(Parse(Repeat(plain + u"ab\r\n", kMany)).MessageBody.size(), 4 * kMany - 2);
  EXPECT_EQ(Parse(u"X:" + Repeat(u"\r\nContent-Type:", kMany) + u"\r\n\r\n").MessageBody, u"");
  EXPECT_EQ(Parse(plain + Repeat(u"\r\n\r\r", kMany)).MessageBody, u"\r\n");
}

}  // namespace
}  // namespace vesko
