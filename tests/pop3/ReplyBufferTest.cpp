#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pop3/ReplyBuffer.h"

namespace vesko {
namespace {

TEST(ReplyBuffer, FindsTheDotLineWhereverAPieceEnds) {
  const Text ends_once = u"+OK\r\n..\r\n.x\r\n\n.\r.\r\nbody\r\n.\r\n";
  for (size_t first = 0; first <= ends_once.size(); ++first) {
    for (size_t second = first; second <= ends_once.size(); ++second) {
      ReplyBuffer buffer;
      buffer.Append(ends_once.substr(0, first));
      EXPECT_EQ(buffer.HasDotLine(), first == ends_once.size());
      buffer.Append(ends_once.substr(first, second - first));
      EXPECT_EQ(buffer.HasDotLine(), second == ends_once.size());
      buffer.Append(ends_once.substr(second));
      EXPECT_TRUE(buffer.HasDotLine() && buffer.EndsWithCrLf());
      EXPECT_EQ(buffer.Take(), ends_once);
    }
  }
}

TEST(ReplyBuffer, JoinsBlocksInOrderAndStartsAfresh) {
  ReplyBuffer buffer;
  Text all;
  for (size_t i = 0; i < 400; ++i) {
    all.append(i * i % 1999, static_cast<char16_t>(u'a' + i % 26));
    buffer.Append(all.substr(buffer.Size()));
  }
  EXPECT_TRUE(buffer.StartsWith(u'b'));
  EXPECT_EQ(buffer.Take(), all);
  buffer.Append(u"\n.\r");
  buffer.Clear();
  buffer.Append(u"\n");  // must not complete what was cleared
  EXPECT_FALSE(buffer.HasDotLine() || buffer.EndsWithCrLf());
}

TEST(ReplyBuffer, CutsStatusAndDotLine) {
  const std::pair<Text, Text> rows[] = {
      {u"+OK\r\nA: b\r\n\r\nc\r\n.\r\n", u"A: b\r\n\r\nc\r\n"},
      {u"+OK\r\n.\r\n", u""},
      {u"+OK\n.\r\n", u""},                            // the only line end is the dot line's
      {u"+OK\n.\r\nxy", u"xy"},                        // nothing left to cut from
      {u"+OK\r\na\r\n.\r\n+OK\r\n", u"a\r\n.\r\n+O"},  // what follows is taken as the end
  };
  for (const auto& [reply, content] : rows) EXPECT_EQ(TopContent(reply), content);
}

}  // namespace
}  // namespace vesko
