#include <gtest/gtest.h>

#include "message/DisplayDate.h"
#include "support/ErrorOf.h"
#include "support/TestLocale.h"

namespace vesko {
namespace {

Text Format(const Text& date) {
  static const std::unique_ptr<Locale> locale = MakeTestLocale();
  return FormatSendDate(*locale, date);
}

TEST(DisplayDate, ShowsDatesInTheUsersFormats) {
  const std::pair<Text, Text> rows[] = {
      {u"Mon, 1 Jan 2001 10:22:01 +0900", u"01/01/2001 10:22"},
      {u"Mon,1 Jan 2001", u"01/01/2001 00:00"},
      {u"Tue, 02 Jan 01 09:05:00 +0900", u"02/01/2001 09:05"},
      {u"2 Jan 99 9:05 pm", u"02/01/1999 21:05"},
      {u"2 Jan 99 9:05 AM", u"02/01/1999 09:05"},
      {u"1 Jan 90 00:00 GMT", u"01/01/2090 00:00"},
      {u"1 Jan 91 00:00 GMT", u"01/01/1991 00:00"},
      {u"29 Feb 2000 23:59:59 (KST) 1:2", u"29/02/2000 23:59"},
      {u"Monday, 1 January 2001 10:22 -0000 (comment, with comma)", u"01/01/2001 10:22"},
  };
  for (const auto& [date, shown] : rows) EXPECT_EQ(Format(date), shown);
}

TEST(DisplayDate, ShowsWhatIsNoDateTwiceInItsNewShape) {
  const std::pair<Text, Text> rows[] = {
      {u"1 Jan 2001 12:00:00 PM", u"1 Jan 2001 24:00:00"},
      {u"x, a b 02 c", u"a b 2002 c"},
      // An empty word counts as a word, so the third one is the month.
      {u"1  05 2001 1:00 Z", u"1  2005 2001 1:00"},
      {u"30 Feb 2001 10:00 +0900", u"30 Feb 2001 10:00"},
      {u"1 Jan 2001 9.5:00 PM", u"1 Jan 2001 21.5:00"},
      {u"a: b c", u"a:"},
  };
  for (const auto& [date, once] : rows) EXPECT_EQ(Format(date), once + u" " + once);
}

TEST(DisplayDate, RaisesWhatItsCallersMustExpect) {
  for (const Text date : {u"", u"   ", u"1 Jan", u"Mon, 1 Jan", u"Mon 1, Jan 2001"}) {
    EXPECT_EQ(ErrorOf([&] { Format(date); }), kSubscriptOutOfRange)
        << ::testing::PrintToString(date);
  }
  for (const Text date : {u"1 Jan xx 10:00", u"1 Jan 0x", u"1 Jan 2001 ab:00 PM",
                          u"1 Jan 2001 :00 PM", u"1 Jan 2001  PM"}) {
    EXPECT_EQ(ErrorOf([&] { Format(date); }), kTypeMismatch) << ::testing::PrintToString(date);
  }
}

}  // namespace
}  // namespace vesko
