#include <gtest/gtest.h>

#include "dialogs/fPop3Site.h"
#include "support/ScriptedToolkit.h"

namespace vesko {
namespace {

class fPop3SiteTest : public testing::Test {
 protected:
  fPop3SiteTest() {
    site.Server = u"pop.example";
    site.User = u"user";
    site.Password = u"secret";
  }
  void Show(fPop3Site& shown, const ScriptedToolkit::Driver& driver) {
    toolkit.On("fPop3Site", driver);
    shown.ShowModal();
  }
  ScriptedToolkit toolkit;
  Text font_name = u"Gulim";
  fPop3Site site{toolkit, font_name};
};

void EditAll(Form& form) {
  Type(form, "txtPop3Account(0)", u"other.example");
  Type(form, "txtPop3Account(1)", u" me ");
  Type(form, "txtPop3Account(2)", u"word");
  Find<CheckBox>(form, "chkSavePassword").Click();
}

TEST_F(fPop3SiteTest, OkHandsOverWhatWasTyped) {
  Show(site, [&](Form& form) {
    EXPECT_EQ(Read(form, "txtPop3Account(0)"), u"pop.example");
    EXPECT_EQ(Read(form, "txtPop3Account(2)"), u"secret");
    EXPECT_TRUE(Find<TextBox>(form, "txtPop3Account(2)").Password());
    EXPECT_EQ(toolkit.focus, "txtPop3Account(1)");
    Press(form, "cmdHelp");
    EditAll(form);
    Press(form, "cmdOK");
  });
  EXPECT_TRUE(!site.Canceled() && site.SavePassword);
  EXPECT_EQ(site.Server + site.User + site.Password, u"other.example me word");
  ASSERT_EQ(toolkit.messages.size(), 1u);
  EXPECT_EQ(toolkit.messages[0].text,
            u"\r\nIf all of them are correct but do not work, "
            u"TRY IT LATER since POP3 server is so busy.");
}

TEST_F(fPop3SiteTest, CancelAndClosingKeepWhatWasGiven) {
  for (const bool by_frame : {false, true}) {
    fPop3Site asked(toolkit, font_name);
    asked.Server = u"pop.example";
    Show(asked, [&](Form& form) {
      EditAll(form);
      by_frame ? form.Close() : Press(form, "cmdCancel");
    });
    EXPECT_TRUE(asked.Canceled() && !asked.SavePassword);
    EXPECT_EQ(asked.Server + asked.User + asked.Password, u"pop.example");
  }
}

TEST_F(fPop3SiteTest, OkAndEnterNeedAllThreeTexts) {
  for (const char* box : {"txtPop3Account(0)", "txtPop3Account(1)", "txtPop3Account(2)"}) {
    Show(site, [&](Form& form) {
      TextBox& edited = Find<TextBox>(form, box);
      edited.Type({});
      EXPECT_FALSE(Find<CommandButton>(form, "cmdOK").Enabled()) << box;
      edited.PressKey(kKeyReturn);
      Press(form, "cmdOK");
      EXPECT_TRUE(form.IsLoaded());
      edited.Type(u" ");
      EXPECT_FALSE(edited.PressKey('A'));
      edited.PressKey(kKeyReturn);
    });
    EXPECT_FALSE(site.Canceled());
  }
}

}  // namespace
}  // namespace vesko
