#include <gtest/gtest.h>

#include "support/ScriptedToolkit.h"
#include "ui/InputBox.h"
#include "ui/QuestionBox.h"

namespace vesko {
namespace {

TEST(QuestionBoxTest, ReturnsTheButtonAndShowsNoEmptyOnes) {
  const Text question = u"100 & <b>more</b>\r\nReally ?";
  const std::pair<Text, int> rows[] = {{u"&Yes", 0}, {u"&Later", 3}, {u"", kNoButton}};
  for (const auto& [pressed, expected] : rows) {
    ScriptedToolkit toolkit;
    toolkit.Answer(pressed, question);
    EXPECT_EQ(QuestionBox(toolkit, question, u"Title", {u"&Yes", u"", u"", u"&Later", u""}),
              expected);
  }
}

TEST(QuestionBoxTest, ShowsPlainTextAndBeginsAtTheFirstButton) {
  ScriptedToolkit toolkit;
  toolkit.On("QuestionBox", [&](Form& box) {
    EXPECT_EQ(box.Caption(), u"Title");
    EXPECT_TRUE(Find<Label>(box, "lblMessage").Literal());
    EXPECT_EQ(toolkit.focus, "cmdAnswer(1)");
    EXPECT_EQ(LaidOut(box.GetLayout()).size(), 3u) << "message and two buttons";
    EXPECT_EQ(box.CancelButton(), nullptr) << "Escape closes";
    box.Close();
  });
  QuestionBox(toolkit, u"?", u"Title", {u"", u"&Yes", u"", u"&No", u""});
}

TEST(InputBoxTest, ReturnsTheTextOnlyOnOk) {
  ScriptedToolkit toolkit;
  toolkit.Input(u" typed ", u"Prompt");
  EXPECT_EQ(InputBox(toolkit, u"Prompt", u"Title"), u" typed ");
  toolkit.On("InputBox", [&](Form& box) {
    EXPECT_EQ(Find<Label>(box, "lblPrompt").Caption(), u"Prompt");
    EXPECT_EQ(Read(box, "txtAnswer"), u"before");
    EXPECT_EQ(Find<CommandButton>(box, "cmdOK").Caption(), u"OK");
    EXPECT_EQ(Find<CommandButton>(box, "cmdCancel").Caption(), u"Cancel");
    EXPECT_EQ(toolkit.focus, "txtAnswer");
    box.Close();
  });
  EXPECT_EQ(InputBox(toolkit, u"Prompt", u"Title", u"before"), u"");
}

}  // namespace
}  // namespace vesko
