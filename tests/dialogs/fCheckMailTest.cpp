#include <gtest/gtest.h>

#include <algorithm>

#include "dialogs/fCheckMail.h"
#include "support/FakeMachine.h"

namespace vesko {
namespace {

class fCheckMailTest : public testing::Test {
 protected:
  void Check() {
    window.Prepare();
    window.ShowModal();
    EXPECT_FALSE(window.IsLoaded());
  }

  FakeMachine machine;
  fCheckMail window{{machine.toolkit, *machine.locale, machine.configuration, machine.mails,
                     machine.socket, machine.clock, machine.font_name}};
};

TEST_F(fCheckMailTest, ShowsWhatHappensAndClosesItself) {
  machine.AddAccount(machine.Record(u"one"));
  machine.AddAccount(machine.Record(u"two"));
  machine.socket.conversations = {OneMessage(u"a@mail.example"), EmptyMailbox()};
  std::vector<Text> commands;
  bool next_enabled_for_first = false;
  machine.pump.on_turn = [&](int) {
    commands.push_back(Find<Label>(window, "lblCmd").Caption());
    const bool enabled = Find<CommandButton>(window, "cmdNext").Enabled();
    if (window.Caption() == u"Checking mail box of 'one.example' ...") {
      next_enabled_for_first = enabled;
    }
    EXPECT_FALSE(enabled && window.Caption() == u"Checking mail box of 'two.example' ...");
  };
  Check();
  EXPECT_TRUE(next_enabled_for_first);
  EXPECT_EQ(Find<Label>(window, "lblProgress").Caption(), u"1 are in the mail boxes !!!");
  EXPECT_EQ(Find<ProgressBar>(window, "prgBar1").Maximum(), 1);
  EXPECT_NE(std::find(commands.begin(), commands.end(), u"Command: PASS ******"), commands.end());
  EXPECT_TRUE(window.NewMail());
  machine.toolkit.On("fCheckMail", [](Form& form) { form.Close(); });
  window.ShowModal();  // not prepared: runs nothing
}

TEST_F(fCheckMailTest, AsksForMissingDataAndKeepsThem) {
  machine.AddAccount(machine.Record(u"one", u"", u"110", u"0"));
  machine.socket.conversations = {EmptyMailbox()};
  machine.toolkit.On("fPop3Site", [](Form& form) {
    EXPECT_EQ(Read(form, "txtPop3Account(0)"), u"one.example");
    Type(form, "txtPop3Account(2)", u"secret");
    Find<CheckBox>(form, "chkSavePassword").Click();
    Press(form, "cmdOK");
  });
  Check();
  EXPECT_EQ(Decrypt(machine.Account(1)[kAccountPassword], *machine.locale), u"secret");
  EXPECT_EQ(machine.Account(1)[kAccountSavePassword], u"1");
}

TEST_F(fCheckMailTest, AsksWhetherToTryAgain) {
  machine.AddAccount(machine.Record(u"one"));
  const Script refused = Server(u"+OK\r\n") + Client(u"USER user") + Server(u"+OK\r\n") +
                         Client(u"PASS secret") + Server(u"-ERR no\r\n");
  machine.socket.conversations = {refused, refused, refused};
  const Text question =
      u"Checking mail is failed on 'one.example'.\r\nLast command was 'PASS ******'.\r\n"
      u"Try again ? \r\n";
  machine.toolkit.Answer(u"&Yes", question);
  machine.toolkit.Answer(u"", question);  // closing the box tries again
  machine.toolkit.Answer(u"&No", question);
  Check();
}

TEST_F(fCheckMailTest, CancelAndClosingEndTheRun) {
  machine.AddAccount(machine.Record(u"one"));
  machine.AddAccount(machine.Record(u"two"));
  for (const bool by_frame : {false, true}) {
    machine.socket.conversations = {Server(u"+OK\r\n") + Client(u"USER user")};
    if (!by_frame)
      machine.socket.conversations[0] = machine.socket.conversations[0] + Client(u"QUIT");
    machine.pump.on_turn = [&](int) {
      if (machine.socket.sent.empty() || machine.socket.sent.back() != "USER user") return;
      machine.socket.sent.clear();
      machine.socket.conversations.clear();
      by_frame ? window.Close() : Press(window, "cmdCancel");
    };
    Check();
    EXPECT_EQ(machine.socket.State(), SocketState::kClosed);
    EXPECT_TRUE(window.Cancelled());
    EXPECT_EQ(machine.socket.connected.back(), "one.example:110");
  }
}

}  // namespace
}  // namespace vesko
