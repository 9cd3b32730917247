#include <gtest/gtest.h>

#include <array>

#include "dialogs/fListMail.h"
#include "support/FakeMachine.h"

namespace vesko {
namespace {

class fListMailTest : public testing::Test {
 protected:
  fListMailTest() { machine.configuration.SpamSenders = {u"@SPAM.example"}; }

  /// Shows the window; a driver that does not leave it presses Exit at its end.
  void Show(const std::function<void(Form&, ListView&)>& driver) {
    machine.toolkit.On("fListMail", [driver](Form& form) {
      driver(form, Find<ListView>(form, "LV1"));
      if (form.IsLoaded()) Press(form, "cmdMail(3)");
    });
    window.ShowModal();
    EXPECT_FALSE(window.IsLoaded());
  }

  FakeMachine machine;
  fConfig config_window{machine.toolkit, machine.services, machine.data, machine.store,
                        [](const Text&) {}};
  fCheckMail check_window{machine.toolkit, machine.services, machine.data};
  fListMail window{machine.toolkit, machine.services, machine.data, config_window, check_window};
};

Text RowTexts(const ListView& list) {
  std::vector<Text> texts;
  for (int row = 0; row < list.Count(); ++row) texts.push_back(list.CellAt(row, 0));
  return Join(texts, u" ");
}

TEST_F(fListMailTest, OpensWithTheFirstMessageRead) {
  cMessage& first = machine.AddMail(u"a@mail.example", u"subject");
  first.CC = u"cc";
  first.BCC = u"bcc";
  machine.AddMail(u"b@spam.example");
  Show([&](Form& form, ListView& list) {
    EXPECT_EQ(form.Caption(), u"2 MAILS (1 NEW MAILS, 1 SPAM MAILS)");
    EXPECT_EQ(list.CellAt(0, 1) + list.CellAt(0, 5) + list.CellAt(0, 6), u"subjectccbcc");
    EXPECT_EQ(list.StateAt(0), MailState::kMailRead);
    EXPECT_EQ(list.StateAt(1), MailState::kSpam);
    EXPECT_TRUE(list.Selected(0) && first.Read);
    EXPECT_EQ(Read(form, "txtBody"), u"body from a@mail.example");
    EXPECT_EQ(form.FirstInTabOrder()->Name(), "cmdMail(0)");
    list.ClickRow(1);
    EXPECT_EQ(list.StateAt(1), MailState::kSpamRead);
    EXPECT_EQ(Read(form, "txtBody"), u"body from b@spam.example");
    EXPECT_EQ(form.Caption(), u"2 MAILS (0 NEW MAILS, 1 SPAM MAILS)");
  });
}

TEST_F(fListMailTest, MarksChangeFlagsAndImages) {
  using enum MailState;
  // After the key, of kMail, kMailRead, kSpam, kSpamRead.
  const std::pair<int, std::array<MailState, 4>> rows[] = {
      {'S', {kSpam, kSpamRead, kSpam, kSpamRead}},
      {'O', {kMail, kMailRead, kMail, kMailRead}},
      {'R', {kMailRead, kMailRead, kSpamRead, kSpamRead}},
      {'N', {kMail, kMail, kSpam, kSpam}}};
  for (int i = 0; i < 5; ++i) machine.AddMail(i < 3 ? u"a@mail.example" : u"b@spam.example");
  for (const auto& c : rows) {
    int n = 0;
    machine.mails.ForEach([&](cMessage& message) {
      message.Read = n == 0 || n % 2 == 0;
      return ++n, true;
    });
    Show([&](Form&, ListView& list) {
      list.SelectAll();
      list.SetSelected(0, false);  // read by the opening; rows 1 to 4 have the four states
      EXPECT_TRUE(list.PressKey(c.first, kControl));
      for (int row = 1; row <= 4; ++row) {
        EXPECT_EQ(list.StateAt(row), c.second.at(row - 1)) << static_cast<char>(c.first);
      }
      EXPECT_EQ(list.StateAt(0), MailState::kMailRead) << "not selected";
    });
  }
}

TEST_F(fListMailTest, KeysNeedControl) {
  for (int i = 0; i < 3; ++i) machine.AddMail(u"a");
  Show([](Form& form, ListView& list) {
    EXPECT_FALSE(list.PressKey('A', kShift | kAlt) || list.PressKey('X', kControl));
    EXPECT_FALSE(list.Selected(2));
    EXPECT_TRUE(list.PressKey('A', kControl | kShift));
    list.PressKey('R', kControl);
    EXPECT_EQ(form.Caption(), u"3 MAILS (0 NEW MAILS, 0 SPAM MAILS)");
    list.PressKey('I', kControl);
    EXPECT_FALSE(list.Selected(0) || list.Selected(1) || list.Selected(2));
  });
}

TEST_F(fListMailTest, TheRightButtonPopsTheMenuUp) {
  for (int i = 0; i < 3; ++i) machine.AddMail(u"a");
  int popups = 0;
  machine.toolkit.on_popup = [&](PopupMenu& menu) {
    ++popups;
    Text items;
    for (const PopupMenu::Item& item : menu.items) items += item.caption + item.shortcut + u"; ";
    EXPECT_EQ(items,
              u"Set &SPAMCtrl+S; Set &OrdinaryCtrl+O; -; Set ReadCtrl+R; Set NewCtrl+N; -; "
              u"Select &AllCtrl+A; &Invert SelectionCtrl+I; ");
    menu.on_click(0);  // Set SPAM
  };
  Show([&](Form&, ListView& list) {
    list.PressMouse(kLeftButton, 1);
    list.PressMouse(kRightButton, -1);
    EXPECT_EQ(popups, 0);
    list.SetSelected(1, true);
    list.PressMouse(kRightButton, 1);
    EXPECT_EQ(list.StateAt(0), MailState::kSpamRead) << "selection kept";
    EXPECT_EQ(list.StateAt(1), MailState::kSpam);
    list.PressMouse(kRightButton | kLeftButton, 2);
    EXPECT_TRUE(!list.Selected(0) && !list.Selected(1) && list.Selected(2));
    EXPECT_EQ(popups, 2);
  });
}

TEST_F(fListMailTest, EveryColumnClickTurnsTheOrder) {
  for (const char16_t* from : {u"b", u"c", u"a"}) machine.AddMail(from, Text(from) + u"!");
  Show([](Form&, ListView& list) {
    const std::pair<int, const char16_t*> clicks[] = {
        {1, u"c b a"}, {1, u"a b c"}, {2, u"c b a"}, {1, u"a b c"}};
    for (const auto& [column, expected] : clicks) {
      list.ClickColumn(column);
      EXPECT_EQ(RowTexts(list), expected);
    }
    EXPECT_TRUE(list.Visible());
    EXPECT_EQ(list.CurrentRow(), 1) << "still on the row that was first";
  });
  Show([](Form&, ListView& list) { EXPECT_EQ(RowTexts(list), u"b c a") << "a fresh list"; });
}

TEST_F(fListMailTest, ConfigSpamFiltersAgainUnlessCancelled) {
  for (const char16_t* from : {u"b@new.example", u"a@new.example"}) machine.AddMail(from);
  machine.toolkit.On("InputBox", [](Form& box) {
    Type(box, "txtAnswer", u"@new.EXAMPLE");
    Press(box, "cmdOK");
  });
  machine.toolkit.On("fConfig", [](Form& form) {
    EXPECT_EQ(Find<TabControl>(form, "SSTab1").Tab(), kSpamPage);
    Press(form, "cmdSpamSender(0)");
    Press(form, "cmdOK");
  });
  machine.toolkit.On("fConfig", [](Form& form) { Press(form, "cmdCancel"); });
  Show([](Form& form, ListView& list) {
    for (int i = 0; i < 2; ++i) list.ClickColumn(1);
    list.ClickRow(1);
    Press(form, "cmdMail(0)");
    EXPECT_EQ(RowTexts(list), u"a@new.example b@new.example") << "sorted as before";
    EXPECT_EQ(list.StateAt(1), MailState::kSpamRead);
    EXPECT_EQ(list.CurrentRow(), 0);
    list.PressKey('O', kControl);
    Press(form, "cmdMail(0)");
    EXPECT_EQ(list.StateAt(0), MailState::kMailRead) << "cancelled: nothing more";
  });
}

TEST_F(fListMailTest, DeleteSpamDeletesOnTheServerAndChecksAgain) {
  machine.AddAccount(machine.Record(u"one"));
  machine.AddMail(u"b@spam.example");
  machine.mails.CompleteSession(1);
  const Script deletion = Login() + Stat(u"1 100") + Dele(1) + Quit();
  machine.socket.conversations = {deletion, OneMessage(u"c@spam.example"), deletion, Mailbox({})};
  Show([](Form& form, ListView& list) {
    Press(form, "cmdMail(1)");
    EXPECT_EQ(RowTexts(list), u"c@spam.example");
    EXPECT_EQ(form.Caption(), u"1 MAILS (0 NEW MAILS, 1 SPAM MAILS)");
    Press(form, "cmdMail(1)");
    EXPECT_EQ(list.Count(), 0);
    EXPECT_EQ(Read(form, "txtBody"), u"");
    EXPECT_FALSE(Find<CommandButton>(form, "cmdMail(1)").Enabled());
  });
}

TEST_F(fListMailTest, StartsTheEmailProgramWhereItExists) {
  machine.configuration.DefaultEmailClient = u"C:\\mail.exe";
  Show([](Form& form, ListView& empty) {
    EXPECT_FALSE(Find<CommandButton>(form, "cmdMail(2)").Enabled());
    empty.PressKey('A', kControl);
  });
  machine.shell.files = {u"C:\\mail.exe"};
  Show([&](Form& form, ListView&) {
    Press(form, "cmdMail(2)");
    machine.shell.unstartable = {u"C:\\mail.exe"};
    Press(form, "cmdMail(2)");
    machine.shell.files.clear();
    Press(form, "cmdMail(2)");
  });
  EXPECT_EQ(machine.shell.started, std::vector<Text>{u"C:\\mail.exe"});
  EXPECT_TRUE(machine.toolkit.messages.empty());
}

TEST_F(fListMailTest, LeavingForgetsDeletionMarksAndManualSpamMarks) {
  cMessage& mail = machine.AddMail(u"a@mail.example");
  Show([&](Form& form, ListView& list) {
    list.PressKey('S', kControl);
    mail.Delete = true;
    form.Close();
    EXPECT_EQ(list.Count(), 0);
  });
  EXPECT_FALSE(mail.Delete);
  EXPECT_TRUE(mail.Read && mail.Spam);
  Show([&](Form&, ListView& list) { EXPECT_EQ(list.StateAt(0), MailState::kMailRead); });
}

}  // namespace
}  // namespace vesko
