// Checks that apply to every window alike.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "dialogs/fCheckMail.h"
#include "dialogs/fConfig.h"
#include "dialogs/fListMail.h"
#include "dialogs/fPop3Site.h"
#include "support/FakeMachine.h"

namespace vesko {
namespace {

struct Windows {
  FakeMachine machine;
  ScriptedToolkit toolkit;  // its pump may be asked any number of times
  fConfig config{toolkit, machine.services, machine.data, machine.store, [](const Text&) {}};
  fCheckMail check{toolkit, machine.services, machine.data};
  fListMail list{toolkit, machine.services, machine.data, config, check};
  fPop3Site site{toolkit, machine.data.font_name};

  std::vector<Form*> All() { return {&config, &check, &list, &site}; }
};

std::string Narrow(const Text& text) { return std::string(text.begin(), text.end()); }

/// A line for each control or array of them: the name, and of each control its caption, its tooltip
/// in (), and in [] what a screen reader calls it.
std::string Texts(const Form& form) {
  std::string texts = Narrow(form.Caption());
  std::string before;
  for (const Control* control : form.Controls()) {
    const std::string name = control->Name().substr(0, control->Name().find('('));
    texts += name == std::exchange(before, name) ? ";" : "\n" + name + ":";
    if (const auto* captioned = dynamic_cast<const CaptionedControl*>(control)) {
      if (!captioned->Caption().empty()) texts += " " + Narrow(captioned->Caption());
    }
    if (const auto* tabs = dynamic_cast<const TabControl*>(control)) {
      for (const TabControl::Page& page : tabs->pages) texts += " " + Narrow(page.caption) + ";";
    }
    if (!control->Tooltip().empty()) texts += " (" + Narrow(control->Tooltip()) + ")";
    if (!control->AccessibleName().empty()) texts += " [" + Narrow(control->AccessibleName()) + "]";
  }
  return texts;
}

TEST(WindowsTest, SayWhatTheirControlsAreFor) {
  Windows windows;
  EXPECT_EQ(Texts(windows.check), R"(
lblProgress:
lblTime:
lblCmd:
prgBar1: [Messages of this account]
cmdNext: &Next (Go on with the next account)
cmdCancel: &Cancel)");
  EXPECT_EQ(Texts(windows.list), R"(New Messages
LV1: [Messages]
txtBody: [Message text]
cmdMail: &Config SPAM; &Delete SPAM; &Open Email Client; &Exit)");
  EXPECT_EQ(Texts(windows.site), R"(POP3 Server Connection
fraAccount: Account
lblPop3Account: Connect to; User name; Password
txtPop3Account: [Connect to]; [User name]; [Password]
chkSavePassword: Save password
cmdOK: &Ok
cmdCancel: &Cancel
cmdHelp: &Help)");
  EXPECT_EQ(Texts(windows.config), R"(POP3 Mail Configurarion
SSTab1: Accounts; SPAM Mail Filter; POP3 Mail Option;
lblAccounts: POP3 Mail Accounts
lstPop3Account: [POP3 Mail Accounts]
cmdPOP3: New; &Delete
fraAccount: Account
lblPop3Account: Name; Connect to; User name; Password; POP3 Port
txtPop3Account: [Name]; [Connect to]; [User name]; [Password]; [POP3 Port]
chkSavePassword: Save password
lblNote: All POP3 account informations are stored in the registry.
lblSpamSender: Sender Keyword
lstSpamSender: [Sender Keyword]
cmdSpamSender: &Add; &Rename; &Delete
lblSpamSubject: Subject Keyword
lstSpamSubject: [Subject Keyword]
cmdSpamSubject: &Add; &Rename; &Delete
lblPOP3DownLines: Lines to download
txtPOP3DownLines: [Lines to download]
lblPOP3CheckTime: Time interval for checking mail box (min)
txtPOP3CheckTime: [Time interval for checking mail box (min)]
lblPOP3WaitTime: Waiting time for POP3 command response (sec)
txtPOP3WaitTime: [Waiting time for POP3 command response (sec)]
chkPop3ManualCheck: Manual checking
lblPOP3SoundFile: Sound notification
txtPOP3SoundFile: [Sound notification]
cmdPop3Sound: Test (Test wave file) [Test wave file]; ... (Select wave file for email notification) [Select wave file for email notification]
lblDefEmailClient: Default email client
txtDefEmailClient: [Default email client]
cmdDefEmailClient: ... (Select default email client) [Select default email client]
cmdOK: &Ok
cmdCancel: &Cancel
cmdHelp: &Help)");
}

TEST(WindowsTest, LayEveryControlOutOnceAndCloseByEscape) {
  Windows windows;
  for (Form* form : windows.All()) {
    std::vector<Control*> laid_out = LaidOut(form->GetLayout());
    std::vector<Control*> made = form->Controls();
    std::sort(laid_out.begin(), laid_out.end());
    std::sort(made.begin(), made.end());
    EXPECT_EQ(laid_out, made) << form->Name();
    EXPECT_NE(form->CancelButton(), nullptr) << form->Name();
  }
}

TEST(WindowsTest, OpenInTheMiddleOfTheScreen) {
  Windows windows;
  for (Form* form : windows.All()) {
    if (form != &windows.check) {  // which closes itself
      windows.toolkit.On(form->Name(), [](Form& shown) { shown.Close(); });
    }
    form->ShowModal();
    EXPECT_EQ(form->Left(), (1920 - form->Width()) / 2) << form->Name();
    EXPECT_EQ(form->Top(), (1080 - form->Height()) / 2) << form->Name();
  }
}

}  // namespace
}  // namespace vesko
