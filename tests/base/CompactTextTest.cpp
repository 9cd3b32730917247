#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "base/CompactText.h"

namespace vesko {
namespace {

const Text kTexts[] = {u"",
                       u"a",
                       u"a\r\nb",
                       Text(3, u'\0'),
                       u"\x80\xFF",
                       u"a\x100",
                       u"\xAC00",
                       u"\xD800",
                       Text(1000, u'x') + u"\xFFFF"};

TEST(CompactText, HoldsWhateverATextHolds) {
  for (const Text& text : kTexts) {
    const CompactText compact = text;
    EXPECT_EQ(Text(compact), text);
    EXPECT_EQ(compact.size(), text.size());
    EXPECT_EQ(compact.empty(), text.empty());
    CompactText copy = compact;
    EXPECT_EQ(Text(std::exchange(copy, u"other")), text);
    EXPECT_EQ(Text(compact), text);
    for (const Text& other : kTexts) {
      EXPECT_EQ(compact == other, text == other);
      EXPECT_EQ(compact == CompactText(other), text == other);
      EXPECT_EQ(Text(CompactText::Join({text, {}, other, text})), text + other + text);
    }
  }
}

TEST(CompactText, CutsAndFindsAsATextDoes) {
  for (const Text& text : {Text(u"ab\r\nab\r\n"), Text(u"ab\r\nab\r\n\x100")}) {
    const CompactText compact = text;
    for (const Text needle : {u"", u"ab", u"b\r\na", u"\n", u"\r\n\r", u"abc"}) {
      EXPECT_EQ(compact.Find(needle), Find(text, needle));
    }
    for (size_t count = 0; count <= text.size(); ++count) {
      EXPECT_EQ(compact.Slice(count, 3), text.substr(count, 3));
      CompactText cut = compact;
      cut.RemovePrefix(count);
      EXPECT_EQ(Text(cut), text.substr(count));
      cut = compact;
      cut.RemoveSuffix(count);
      EXPECT_EQ(Text(cut), text.substr(0, text.size() - count));
    }
  }
  EXPECT_EQ(CompactText().Find(u"a"), Text::npos);
}

}  // namespace
}  // namespace vesko
