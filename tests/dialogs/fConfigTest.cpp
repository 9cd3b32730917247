#include <gtest/gtest.h>

#include <array>
#include <tuple>

#include "dialogs/fConfig.h"
#include "support/FakeMachine.h"

namespace vesko {
namespace {

class fConfigTest : public testing::Test {
 protected:
  fConfigTest() { machine.configuration.SpamSenders = {u"one@spam.example", u"", u"@two.example"}; }

  void Accounts(const std::vector<Text>& names) {
    for (const Text& name : names) machine.AddAccount(machine.Record(name));
    machine.store.Save(machine.configuration);
  }

  /// Shows the window; a driver that does not leave it presses OK at its end.
  void Show(const ScriptedToolkit::Driver& driver) {
    machine.toolkit.On("fConfig", [driver](Form& form) {
      driver(form);
      if (form.IsLoaded()) Press(form, "cmdOK");
    });
    window.ShowModal();
    EXPECT_FALSE(window.IsLoaded());
  }

  /// The settings as another start of the component finds them.
  Configuration Stored() {
    Configuration stored;
    machine.store.Load(stored);
    return stored;
  }

  FakeMachine machine;
  std::vector<Text> played;
  fConfig window{machine.toolkit, machine.services, machine.data, machine.store,
                 [this](const Text& path) { played.push_back(path); }};
};

ListBox& AccountList(Form& form) { return Find<ListBox>(form, "lstPop3Account"); }

TEST_F(fConfigTest, ShowsSettingsAndSavesThemOnOk) {
  machine.configuration.ManualChecking = 1;
  Show([](Form& form) {
    EXPECT_EQ(Read(form, "txtPOP3DownLines"), u"20");
    EXPECT_EQ(Read(form, "txtPOP3CheckTime"), u"30");
    EXPECT_EQ(Find<ListBox>(form, "lstSpamSubject").ListIndex(), 0);
    EXPECT_FALSE(Find<TextBox>(form, "txtPOP3CheckTime").Enabled());
    Find<CheckBox>(form, "chkPop3ManualCheck").Click();
    Type(form, "txtPOP3CheckTime", u" 5 ");
    Type(form, "txtPOP3DownLines", u"0");
    Type(form, "txtPOP3WaitTime", u"-1");
    Type(form, "txtPOP3SoundFile", u"ding.wav");
    Type(form, "txtDefEmailClient", u"mail.exe");
  });
  EXPECT_EQ(machine.configuration.DefaultEmailClient, u"mail.exe");
  EXPECT_FALSE(window.Canceled());
  const Configuration stored = Stored();
  EXPECT_EQ((std::array{stored.DownLines, stored.CheckInterval, stored.WaitTime}),
            (std::array{0, 5, -1}));
  EXPECT_EQ(stored.ManualChecking, 0);
  EXPECT_EQ(stored.SoundFile, u"ding.wav");
  EXPECT_EQ(stored.SpamSenders, (std::vector<Text>{u"one@spam.example", u"@two.example"}));
}

TEST_F(fConfigTest, ANumberThatIsNoneKeepsTheWindowAndEverything) {
  const std::tuple<const char*, Text, Text> rows[] = {
      {"txtPOP3DownLines", u"Lines to download", u"many"},
      {"txtPOP3CheckTime", u"Time interval for checking mail box (min)", u""},
      {"txtPOP3WaitTime", u"Waiting time for POP3 command response (sec)", u"99999999999"}};
  for (const auto& row : rows) {
    machine.toolkit.messages.clear();
    Show([&, box = std::get<0>(row)](Form& form) {
      Find<TextBox>(form, box).SetText(std::get<2>(row));
      Type(form, "txtPOP3SoundFile", u"half.wav");
      Press(form, "cmdOK");
      EXPECT_TRUE(form.IsLoaded());
      EXPECT_EQ(machine.toolkit.focus, box);
      EXPECT_EQ(Find<TabControl>(form, "SSTab1").Tab(), kOptionPage);
      EXPECT_EQ(Read(form, "txtPOP3SoundFile"), u"half.wav");
      EXPECT_NE(machine.configuration.SoundFile, u"half.wav");
      form.Close();
    });
    ASSERT_EQ(machine.toolkit.messages.size(), 1u);
    EXPECT_EQ(machine.toolkit.messages[0].text, u"Please type a number.");
    EXPECT_EQ(machine.toolkit.messages[0].title, std::get<1>(row));
  }
}

TEST_F(fConfigTest, EditedAccountsAreStoredWhenAnotherIsShown) {
  Accounts({u"a", u"b"});
  Show([&](Form& form) {
    EXPECT_EQ(Read(form, "txtPop3Account(3)"), u"secret");
    EXPECT_TRUE(Find<TextBox>(form, "txtPop3Account(3)").Password());
    Type(form, "txtPop3Account(0)", u"  alpha ");
    Type(form, "txtPop3Account(3)", u"new word");
    AccountList(form).Click(1);
    EXPECT_EQ(AccountList(form).Item(0), u"alpha");
    EXPECT_EQ(Read(form, "txtPop3Account(1)"), u"b.example");
    Type(form, "txtPop3Account(1)", u"pop.b.example");
  });
  EXPECT_EQ(machine.AccountNames(), u"alpha,b");
  EXPECT_EQ(Decrypt(machine.Account(1).password, *machine.locale), u"new word");
  EXPECT_EQ(machine.Account(2).server, u"pop.b.example");
  EXPECT_EQ(Stored().Accounts.Count(), 2);
}

TEST_F(fConfigTest, PortsAreNumbersAndAccountsHaveNames) {
  Accounts({u"a"});
  const std::pair<Text, Text> cases[] = {{u"", u"110"}, {u"pop3", u"110"}, {u" 995 ", u"995"}};
  for (const auto& row : cases) {
    Show([&](Form& form) { Type(form, "txtPop3Account(4)", row.first); });
    EXPECT_EQ(machine.Account(1).port, row.second);
  }
  Show([](Form& form) {
    Type(form, "txtPop3Account(0)", u"");  // without a name nothing is stored
    Type(form, "txtPop3Account(4)", u"1");
  });
  EXPECT_EQ(machine.Account(1).port, u"995");
}

TEST_F(fConfigTest, SavePasswordFollowsTheRecordWhereItIsANumber) {
  for (const char16_t* flag : {u"1", u"", u"x", u"0", u"", u"7"}) {
    machine.AddAccount(machine.Record(flag, u"p", u"110", flag));
  }
  Show([](Form& form) {
    const int expected[] = {1, 1, 1, 0, 0, 1};
    for (int i = 0; i < 6; ++i) {
      AccountList(form).Click(i);
      EXPECT_EQ(Find<CheckBox>(form, "chkSavePassword").Value(), expected[i]) << i;
    }
  });
}

TEST_F(fConfigTest, AnUnreadablePasswordNeverShowsAnotherOne) {
  machine.AddAccount(machine.Record(u"a"));
  machine.configuration.AddAccount({u"b", u"b.example", u"user", Text(40000, u'='), u"110", u"1"});
  Show([](Form& form) {
    AccountList(form).Click(1);
    EXPECT_NE(Read(form, "txtPop3Account(3)"), u"secret");
  });
}

TEST_F(fConfigTest, NewBeginsAnAccountAndSelectsIt) {
  Show([&](Form& form) {
    for (const char* button : {"cmdPOP3(0)", "cmdPOP3(1)", "cmdPOP3(1)"}) Press(form, button);
    EXPECT_FALSE(Find<TextBox>(form, "txtPop3Account(0)").Enabled());
    EXPECT_FALSE(Find<CheckBox>(form, "chkSavePassword").Enabled());
    EXPECT_EQ(Read(form, "txtPop3Account(0)"), u"");
    Press(form, "cmdPOP3(0)");
    EXPECT_TRUE(Find<TextBox>(form, "txtPop3Account(0)").Enabled());
    EXPECT_EQ(Read(form, "txtPop3Account(0)"), u"New1");
    EXPECT_EQ(Read(form, "txtPop3Account(4)"), u"110");
    EXPECT_EQ(ToText(machine.configuration.Accounts.Item(1)), u"New1\r\n\r\n\r\n\r\n\r\n\r\n0");
    Type(form, "txtPop3Account(0)", u"first");
    Press(form, "cmdPOP3(0)");
    EXPECT_EQ(AccountList(form).ListIndex(), 1);
  });
  EXPECT_EQ(machine.AccountNames(), u"first,New2");
}

TEST_F(fConfigTest, DeleteSelectsTheNeighbourAndSparesIt) {
  const std::tuple<int, Text, int> rows[] = {{0, u"b,c", 0}, {1, u"a,c", 1}, {2, u"a,b", 1}};
  for (const auto& row : rows) {
    machine.configuration.Accounts.Clear();
    Accounts({u"a", u"b", u"c"});
    Show([&](Form& form) {
      AccountList(form).Click(std::get<0>(row));
      Press(form, "cmdPOP3(1)");
      EXPECT_EQ(AccountList(form).ListIndex(), std::get<2>(row));
    });
    EXPECT_EQ(machine.AccountNames(), std::get<1>(row));
    EXPECT_EQ(Stored().Accounts.Count(), 2);
  }
}

TEST_F(fConfigTest, CancelAndClosingDiscardEveryEdit) {
  Accounts({u"a", u"b"});
  for (const bool by_frame : {false, true}) {
    Show([&](Form& form) {
      Type(form, "txtPop3Account(0)", u"changed");
      Press(form, "cmdPOP3(0)");
      AccountList(form).Click(1);
      Press(form, "cmdPOP3(1)");
      Find<ListBox>(form, "lstSpamSubject").Click(0);
      Press(form, "cmdSpamSubject(2)");
      by_frame ? form.Close() : Press(form, "cmdCancel");
    });
    EXPECT_EQ(machine.AccountNames(), u"a,b");
    EXPECT_EQ(machine.configuration.SpamSubjects, (std::vector<Text>{u"ILOVEYOU", u"MELISSA"}));
    EXPECT_TRUE(window.Canceled());
  }
  Show([](Form&) {});
  EXPECT_TRUE(window.Canceled()) << "nothing sets it back";
}

TEST_F(fConfigTest, KeywordsAreAddedRenamedAndDeleted) {
  const Text prompt =
      u"Type new spam mail address keyword\r\nsuch as offers@spam.example or @spam.example:";
  machine.toolkit.Input(u"@three.example", prompt);
  machine.toolkit.On("InputBox", [](Form& box) { Press(box, "cmdCancel"); });
  machine.toolkit.On("InputBox", [](Form& box) {
    EXPECT_EQ(box.Caption() + Read(box, "txtAnswer"), u"Rename Spam Mail@two.example");
    Type(box, "txtAnswer", u"@2.example");
    Press(box, "cmdOK");
  });
  machine.toolkit.Input(u"", prompt);
  Show([](Form& form) {
    ListBox& list = Find<ListBox>(form, "lstSpamSender");
    for (int i = 0; i < 2; ++i) Press(form, "cmdSpamSender(0)");
    EXPECT_EQ(list.Count(), 3);
    list.Click(1);
    for (int i = 0; i < 2; ++i) Press(form, "cmdSpamSender(1)");
    EXPECT_EQ(list.Item(1), u"@2.example") << "no text keeps the old one";
    list.Click(2);
    Press(form, "cmdSpamSender(2)");
    EXPECT_EQ(list.ListIndex(), 1) << "the last one";
    list.Click(0);
    Press(form, "cmdSpamSender(2)");
    EXPECT_EQ(list.ListIndex(), 0) << "the same place";
  });
  EXPECT_EQ(Stored().SpamSenders, std::vector<Text>{u"@2.example"});
  machine.toolkit.Input(
      u"word", u"Type new spam mail subject keyword\r\nsuch as \"ILOVEYOU\" or \"MELISSA\":");
  Show([](Form& form) {
    Press(form, "cmdSpamSubject(0)");
    for (int i = 0; i < 4; ++i) Press(form, "cmdSpamSubject(2)");
    Press(form, "cmdSpamSubject(1)");
  });
  EXPECT_TRUE(Stored().SpamSubjects.empty());
}

TEST_F(fConfigTest, PicksFilesAndPlaysTheSound) {
  machine.toolkit.files = {u"new.wav", u"", u"client.exe", u""};
  Show([&](Form& form) {
    for (const char* button : {"cmdPop3Sound(1)", "cmdDefEmailClient"}) {
      Press(form, button);
      Press(form, button);  // picks none this time
    }
    Press(form, "cmdPop3Sound(0)");
    Press(form, "cmdHelp");
  });
  EXPECT_EQ(played, std::vector<Text>{u"new.wav"});
  EXPECT_EQ(machine.configuration.DefaultEmailClient, u"client.exe");
  const Text wave = u"Select Wave File/All Files (*.*)|*.*|Wave Files (*.wav)|*.wav/wav";
  const Text program =
      u"Select Default Email Client/All Files (*.*)|*.*|Wave Files (*.exe)|*.exe/exe";
  EXPECT_EQ(machine.toolkit.picked, (std::vector<Text>{wave, wave, program, program}));
  ASSERT_EQ(machine.toolkit.messages.size(), 1u);
  EXPECT_EQ(machine.toolkit.messages[0].text,
            u"\r\n1. All passwords are stored as encrypted text for the password protection.\r\n"
            u"2. All POP3 email account details are stored in Registry.");
}

}  // namespace
}  // namespace vesko
