#include <gtest/gtest.h>

#include <algorithm>
#include <set>

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
  fCheckMail window{machine.toolkit, machine.services, machine.data};
};

TEST_F(fCheckMailTest, ShowsWhatHappensAndClosesItself) {
  machine.AddAccount(machine.Record(u"one"));
  machine.AddAccount(machine.Record(u"two"));
  machine.socket.conversations = {OneMessage(u"a@mail.example"), Mailbox({})};
  std::vector<Text> commands;
  std::set<Text> with_next;
  machine.pump.on_turn = [&](int) {
    commands.push_back(Find<Label>(window, "lblCmd").Caption());
    if (Find<CommandButton>(window, "cmdNext").Enabled()) with_next.insert(window.Caption());
  };
  Check();
  EXPECT_EQ(with_next, std::set<Text>{u"Checking mail box of 'one.example' ..."});
  EXPECT_EQ(Find<Label>(window, "lblProgress").Caption(), u"1 are in the mail boxes !!!");
  EXPECT_EQ(Find<ProgressBar>(window, "prgBar1").Maximum(), 1);
  EXPECT_NE(std::find(commands.begin(), commands.end(), u"Command: PASS ******"), commands.end());
  EXPECT_TRUE(window.NewMail());
  machine.toolkit.On("fCheckMail", [](Form& form) {  // not prepared: runs nothing
    EXPECT_EQ(form.Caption(), u"Checking mail box ...");
    EXPECT_EQ(Find<Label>(form, "lblProgress").Caption(), u"");
    EXPECT_EQ(Find<ProgressBar>(form, "prgBar1").Value(), 0);
    form.Close();
  });
  window.ShowModal();
}

TEST_F(fCheckMailTest, AsksForWhatAnAccountLacksWithWhatItHas) {
  machine.configuration.AddAccount(
      {.user = u"ann", .password = Encrypt(u"secret", *machine.locale), .save_password = u"1"});
  machine.socket.conversations = {Mailbox({})};
  machine.toolkit.On("fPop3Site", [](Form& site) {
    EXPECT_EQ(Read(site, "txtPop3Account(0)"), u"");
    EXPECT_EQ(Read(site, "txtPop3Account(1)"), u"ann");
    EXPECT_EQ(Read(site, "txtPop3Account(2)"), u"secret");
    EXPECT_EQ(Find<CheckBox>(site, "chkSavePassword").Value(), 1);
    Type(site, "txtPop3Account(0)", u"one.example");
    Press(site, "cmdOK");
  });
  Check();
  EXPECT_EQ(machine.Account(1).server, u"one.example");
}

TEST_F(fCheckMailTest, AsksWhetherToTryAgain) {
  machine.AddAccount(machine.Record(u"one"));
  const Script refused = Server(u"+OK\r\n") + Client(u"USER ann") + Server(u"-ERR no\r\n");
  machine.socket.conversations = {refused, refused, refused};
  const Text question =
      u"Checking mail is failed on 'one.example'.\r\nLast command was 'USER ann'.\r\n"
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
    const Script greeted = Server(u"+OK\r\n") + Client(u"USER ann");
    machine.socket.conversations = {by_frame ? greeted : greeted + Client(u"QUIT")};
    machine.pump.on_turn = [&](int) {
      if (machine.socket.sent.empty() || machine.socket.sent.back() != "USER ann") return;
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
