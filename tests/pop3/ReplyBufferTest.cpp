#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pop3/ReplyBuffer.h"

namespace vesko {
namespace {

TEST(ReplyBuffer, JoinsBlocksInOrderAndStartsAfresh) {
  constexpr size_t kBlock = 65536;  // characters
  // Exactly one block, barely two, exactly two, more, and a piece longer than a block. The last
  // character decides whether a block is wide.
  const std::vector<size_t> piece_sizes[] = {{kBlock},
                                             {kBlock, 1},
                                             {1, kBlock},
                                             {kBlock, kBlock},
                                             {kBlock - 1, 1, kBlock - 1, 1, 1},
                                             {3, 3 * kBlock, 3},
                                             std::vector<size_t>(400, 999)};
  ReplyBuffer buffer;
  for (char16_t last : {u'z', u'\xFF', u'\x100'}) {
    for (const auto& sizes : piece_sizes) {
      Text all;
      for (size_t size : sizes) {
        Text piece(size, static_cast<char16_t>(u'a' + all.size() % 7));
        piece.back() = last;
        all += piece;
        buffer.Append(piece);
      }
      EXPECT_TRUE(buffer.StartsWith(all.front()));
      EXPECT_EQ(buffer.Size(), all.size());
      EXPECT_EQ(buffer.IsLong(), all.size() > kBlock);
      ReplyBuffer copy = buffer;
      EXPECT_TRUE(copy.TakeCompact() == all);
      EXPECT_TRUE(buffer.Take() == all);
      EXPECT_EQ(buffer.Size(), 0u);
    }
  }
  buffer.Append(u"\n.\r");
  buffer.Clear();
  buffer.Append(u"\n");  // must not complete the text before Clear
  EXPECT_FALSE(buffer.HasDotLine() || buffer.EndsWithCrLf());
}

TEST(ReplyBuffer, CutsStatusAndDotLine) {
  const std::pair<Text, Text> rows[] = {
      {u"+OK\r\nA: b\r\n\r\nc\r\n.\r\n", u"A: b\r\n\r\nc\r\n"},
      {u"+OK\r\n.\r\n", u""},
      {u"+OK\n.\r\n", u""},                            // the only line end is that of the dot line
      {u"+OK\n.\r\nxy", u"xy"},                        // nothing left to cut from
      {u"+OK\r\na\r\n.\r\n+OK\r\n", u"a\r\n.\r\n+O"},  // text after the dot line is cut like it
  };
  for (const auto& [reply, content] : rows) {
    EXPECT_EQ(TopContent(reply), content);
    EXPECT_EQ(CompactTopContent(reply), content);
  }
}

}  // namespace
}  // namespace vesko
