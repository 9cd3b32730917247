#include <gtest/gtest.h>

#include "support/ScriptedToolkit.h"
#include "ui/InputBox.h"
#include "ui/QuestionBox.h"

namespace vesko {
namespace {

TEST(QuestionBoxTest, ShowsPlainTextAndNoEmptyButtons) {
  const Text question = u"100 & <b>more</b>\r\nReally ?";
  for (const int button : {1, 3, kNoButton}) {
    ScriptedToolkit toolkit;
    toolkit.On("QuestionBox", [&](Form& box) {
      const Label& message = Find<Label>(box, "lblMessage");
      EXPECT_TRUE(message.Literal() && message.Caption() == question && box.Caption() == u"Title");
      EXPECT_EQ(toolkit.focus, "cmdAnswer(1)");
      EXPECT_EQ(LaidOut(box.GetLayout()).size(), 3u) << "message and two buttons";
      button == kNoButton ? box.Close() : Press(box, "cmdAnswer(" + std::to_string(button) + ")");
    });
    EXPECT_EQ(QuestionBox(toolkit, question, u"Title", {u"", u"&Yes", u"", u"&Later", u""}),
              button);
  }
}

TEST(InputBoxTest, ReturnsTheTextOnlyOnOk) {
  ScriptedToolkit toolkit;
  toolkit.Input(u" typed ", u"Prompt");
  EXPECT_EQ(InputBox(toolkit, u"Prompt", u"Title"), u" typed ");
  toolkit.On("InputBox", [&](Form& box) {
    EXPECT_EQ(Find<CommandButton>(box, "cmdOK").Caption(), u"OK");
    EXPECT_EQ(Find<CommandButton>(box, "cmdCancel").Caption(), u"Cancel");
    EXPECT_EQ(toolkit.focus, "txtAnswer");
    box.Close();
  });
  EXPECT_EQ(InputBox(toolkit, u"Prompt", u"Title", u"before"), u"");
}

}  // namespace
}  // namespace vesko
