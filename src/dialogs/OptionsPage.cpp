#include "dialogs/OptionsPage.h"

#include <utility>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

void Name(Label& label, TextBox& box, TextView caption) {
  label.SetCaption(Text(caption));
  box.SetAccessibleName(Text(caption));
}

void Describe(CommandButton& button, TextView caption, TextView purpose) {
  button.SetCaption(Text(caption));
  button.SetTooltip(Text(purpose));
  button.SetAccessibleName(Text(purpose));
}

}  // namespace

OptionsPage::OptionsPage(Form& form, Toolkit& toolkit,
                         std::function<void(const Text& path)> play_sound,
                         std::function<void()> turn_to_page)
    : toolkit_(toolkit),
      play_sound_(std::move(play_sound)),
      turn_to_page_(std::move(turn_to_page)),
      lblPOP3DownLines(form, "lblPOP3DownLines"),
      txtPOP3DownLines(form, "txtPOP3DownLines"),
      lblPOP3CheckTime(form, "lblPOP3CheckTime"),
      txtPOP3CheckTime(form, "txtPOP3CheckTime"),
      lblPOP3WaitTime(form, "lblPOP3WaitTime"),
      txtPOP3WaitTime(form, "txtPOP3WaitTime"),
      chkPop3ManualCheck(form, "chkPop3ManualCheck"),
      lblPOP3SoundFile(form, "lblPOP3SoundFile"),
      txtPOP3SoundFile(form, "txtPOP3SoundFile"),
      cmdPop3Sound(form, "cmdPop3Sound"),
      lblDefEmailClient(form, "lblDefEmailClient"),
      txtDefEmailClient(form, "txtDefEmailClient"),
      cmdDefEmailClient(form, "cmdDefEmailClient") {
  SetUp();
  SetUpButtons();
}

void OptionsPage::SetUp() {
  Name(lblPOP3DownLines, txtPOP3DownLines, u"Lines to download");
  Name(lblPOP3CheckTime, txtPOP3CheckTime, u"Time interval for checking mail box (min)");
  Name(lblPOP3WaitTime, txtPOP3WaitTime, u"Waiting time for POP3 command response (sec)");
  Name(lblPOP3SoundFile, txtPOP3SoundFile, u"Sound notification");
  Name(lblDefEmailClient, txtDefEmailClient, u"Default email client");
  chkPop3ManualCheck.SetCaption(u"Manual checking");
  chkPop3ManualCheck.on_click = [this] { ManualCheckClicked(); };
}

void OptionsPage::SetUpButtons() {
  Describe(cmdPop3Sound[0], u"Test", u"Test wave file");
  Describe(cmdPop3Sound[1], u"...", u"Select wave file for email notification");
  Describe(cmdDefEmailClient, u"...", u"Select default email client");
  cmdPop3Sound[0].on_click = [this] { play_sound_(txtPOP3SoundFile.GetText()); };
  cmdPop3Sound[1].on_click = [this] {
    PickFile(txtPOP3SoundFile, u"Select Wave File", u"All Files (*.*)|*.*|Wave Files (*.wav)|*.wav",
             u"wav");
  };
  cmdDefEmailClient.on_click = [this] {
    PickFile(txtDefEmailClient, u"Select Default Email Client",
             u"All Files (*.*)|*.*|Wave Files (*.exe)|*.exe", u"exe");
  };
}

Layout OptionsPage::Arrange() {
  Layout numbers = Grid(2, {Item(lblPOP3DownLines), Item(txtPOP3DownLines), Item(lblPOP3CheckTime),
                            Item(txtPOP3CheckTime), Item(lblPOP3WaitTime), Item(txtPOP3WaitTime)});
  return Column({std::move(numbers), Item(chkPop3ManualCheck), Item(lblPOP3SoundFile),
                 Row({Item(txtPOP3SoundFile, 1), Item(cmdPop3Sound[0]), Item(cmdPop3Sound[1])}),
                 Item(lblDefEmailClient),
                 Row({Item(txtDefEmailClient, 1), Item(cmdDefEmailClient)}), Space()});
}

void OptionsPage::Load(const Configuration& configuration) {
  txtPOP3DownLines.SetText(Decimal(configuration.DownLines));
  txtPOP3CheckTime.SetText(Decimal(configuration.CheckInterval));
  txtPOP3WaitTime.SetText(Decimal(configuration.WaitTime));
  txtPOP3SoundFile.SetText(configuration.SoundFile);
  txtDefEmailClient.SetText(configuration.DefaultEmailClient);
  chkPop3ManualCheck.SetValue(configuration.ManualChecking != 0 ? 1 : 0);
  ManualCheckClicked();
}

bool OptionsPage::Store(Configuration& configuration) {
  int32_t down_lines = 0, check_interval = 0, wait_time = 0;
  if (!ReadNumber(txtPOP3DownLines, lblPOP3DownLines, down_lines) ||
      !ReadNumber(txtPOP3CheckTime, lblPOP3CheckTime, check_interval) ||
      !ReadNumber(txtPOP3WaitTime, lblPOP3WaitTime, wait_time)) {
    return false;
  }
  configuration.DownLines = down_lines;
  configuration.CheckInterval = check_interval;
  configuration.WaitTime = wait_time;
  configuration.SoundFile = txtPOP3SoundFile.GetText();
  configuration.DefaultEmailClient = txtDefEmailClient.GetText();
  configuration.ManualChecking = chkPop3ManualCheck.Value();
  return true;
}

void OptionsPage::ManualCheckClicked() {
  txtPOP3CheckTime.SetEnabled(chkPop3ManualCheck.Value() == 0);
}

void OptionsPage::PickFile(TextBox& box, const Text& title, const Text& filter,
                           const Text& extension) {
  Text path = toolkit_.OpenFile(title, filter, extension);
  if (!path.empty()) box.SetText(std::move(path));
}

bool OptionsPage::ReadNumber(TextBox& box, const Label& label, int32_t& number) {
  if (IgnoreErrors([&] { number = ToInt32(TextView(box.GetText())); })) return true;
  toolkit_.ShowMessage(u"Please type a number.", label.Caption(), MessageIcon::kExclamation);
  turn_to_page_();
  box.SetEnabled(true);  // manual checking may have disabled it
  box.SetFocus();
  return false;
}

}  // namespace vesko
