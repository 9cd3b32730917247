#include <gtest/gtest.h>

#include "desktop/common/ShownText.h"

namespace vesko {
namespace {

TEST(ShownTextTest, OneLineHoldsNothingThatCouldMislead) {
  const std::pair<TextView, TextView> rows[] = {
      {u"plain <b>&y</b> \u00E9\u3042\U0001F600", u"plain <b>&y</b> \u00E9\u3042\U0001F600"},
      {u"a\r\nb\tc\u0001\u007F\u009F", u"a  b c   "},
      {u"gpj.\u202Eexe\u202A\u2029", u"gpj. exe  "},
      {u"\u2066x\u2069\u2028", u" x  "},
      {u"\u200Ename\u200F", u"\u200Ename\u200F"},  // marks that mixed scripts need
      {u"\uFFFCx\uFDD0\uFFFE\uFFFF\uFFFD", u" x   \uFFFD"},
      {TextView(u"\0", 1), u" "}};
  for (const auto& [text, shown] : rows) EXPECT_EQ(OneLine(text), shown);
  Text pairs(1, u'x');
  for (int i = 0; i < 1000; ++i) pairs += u"\U0001F600";
  EXPECT_EQ(OneLine(pairs), pairs.substr(0, 999)) << "no half of a pair";
}

TEST(ShownTextTest, LinesEndAsTheToolkitWantsIt) {
  bool whole = false;
  EXPECT_EQ(Lines(u"a\r\nb\rc\nd\r\n\r\n\t\u202E", 100, u"\n", &whole), u"a\nb\nc\nd\n\n\t ");
  EXPECT_TRUE(whole);
  EXPECT_EQ(Lines(u"a\rb\n", 100, kCrLf), u"a\r\nb\r\n");
  EXPECT_EQ(Lines(u"abc", 2, u"\n", &whole), u"ab");
  EXPECT_FALSE(whole);
  EXPECT_EQ(Lines(u"\U0001F600", 1, u"\n"), u"");
  const Text word(2000, u'x');
  EXPECT_EQ(Lines(word + u" " + word, 9999, u"\n", &whole), word + u" " + word);
  EXPECT_TRUE(whole);
  EXPECT_EQ(Lines(word + u"x", 9999, u"\n", &whole), word + u"\nx");
  EXPECT_FALSE(whole) << "a text that was broken is not the one to edit";
}

}  // namespace
}  // namespace vesko
