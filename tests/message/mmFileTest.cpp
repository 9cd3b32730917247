#include <gtest/gtest.h>

#include "message/mmFile.h"
#include "support/FakeShell.h"

namespace vesko {
namespace {

TEST(FileNameOfTest, TakesWhatIsBehindTheLastSeparator) {
  const std::pair<Text, Text> rows[] = {
      {u"C:\\Program Files\\Mail\\mail.exe", u"mail.exe"},
      {u"", u""},
      {u"/usr/bin/", u""},
      {u"a\\b/c\\d/e", u"d/e"},
  };
  for (const auto& [path, name] : rows) EXPECT_EQ(FileNameOf(path), name);
}

TEST(FileExistsTest, IsTrueForFilesAlone) {
  FakeShell shell;
  shell.files = {u"C:\\a.wav"};
  shell.folders = {u"C:\\folder"};
  EXPECT_TRUE(FileExists(shell, u"C:\\a.wav"));
  EXPECT_FALSE(FileExists(shell, u"C:\\folder") || FileExists(shell, u""));
}

}  // namespace
}  // namespace vesko
