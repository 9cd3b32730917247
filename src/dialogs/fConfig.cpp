#include "dialogs/fConfig.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/RunTimeError.h"
#include "config/mmEncrypt.h"
#include "platform/Socket.h"
#include "ui/InputBox.h"
#include "ui/mVeskoMain.h"
#include "ui/mmWinDefs.h"

namespace vesko {
namespace {

constexpr int kWidth = 520;
constexpr int kHeight = 380;

/// The boxes of an account, in their order.
enum AccountBox : size_t { kName, kServer, kUser, kPassword, kPort, kBoxes };
constexpr TextView kNewAccount = u"New";

enum KeywordButton { kAdd, kRename, kDelete };

Text DefaultPort() { return Decimal(kPop3Port); }

void SelectNear(ListBox& list, int position) {
  list.SetListIndex(std::min(position, list.Count() - 1));
}

void FillKeywords(ListBox& list, const std::vector<Text>& keywords) {
  list.Clear();
  for (const Text& keyword : keywords) {
    if (!keyword.empty()) list.AddItem(keyword);
  }
  if (list.Count() > 0) list.SetListIndex(0);
}

/// By way of one joined text, as the registry keeps it, so that memory holds what a load will give.
std::vector<Text> Keywords(const ListBox& list) {
  std::vector<Text> entries;
  for (int i = 0; i < list.Count(); ++i) entries.push_back(list.Item(i));
  return Split(Join(entries, kCrLf), kCrLf);
}

}  // namespace

fConfig::fConfig(Toolkit& toolkit, const Services& services, SharedData& data, mRegistry& store,
                 PlaySound play_sound)
    : Form("fConfig", toolkit),
      locale_(services.locale),
      configuration_(data.configuration),
      store_(store),
      play_sound_(std::move(play_sound)),
      font_name_(data.font_name),
      senders_{lstSpamSender, cmdSpamSender,
               u"Type new spam mail address keyword\r\n"
               u"such as offers@spam.example or @spam.example:"},
      subjects_{lstSpamSubject, cmdSpamSubject,
                u"Type new spam mail subject keyword\r\n"
                u"such as \"ILOVEYOU\" or \"MELISSA\":"} {
  SetCaption(u"POP3 Mail Configurarion");
  Resize(kWidth, kHeight);
  SetUp();
  AddAll();
  SSTab1.pages = {{u"Accounts", AccountsPage()},
                  {u"SPAM Mail Filter", Row({KeywordColumn(lblSpamSender, senders_),
                                             KeywordColumn(lblSpamSubject, subjects_)})},
                  {u"POP3 Mail Option", OptionsPage()}};
  SetLayout(Column({Item(SSTab1, 1), Row({Space(), Item(cmdOK), Item(cmdCancel), Item(cmdHelp)})}));
}

fConfig::~fConfig() { TakeDown(); }

void fConfig::SetUp() {
  SetUpAccounts();
  SetUpKeywords(senders_);
  SetUpKeywords(subjects_);
  lblSpamSender.SetCaption(u"Sender Keyword");
  lstSpamSender.SetAccessibleName(u"Sender Keyword");
  lblSpamSubject.SetCaption(u"Subject Keyword");
  lstSpamSubject.SetAccessibleName(u"Subject Keyword");
  SetUpOptions();
  cmdOK.SetCaption(u"&Ok");
  cmdOK.on_click = [this] { Confirm(); };
  cmdCancel.SetCaption(u"&Cancel");
  cmdCancel.on_click = [this] { Cancel(); };
  cmdHelp.SetCaption(u"&Help");
  cmdHelp.on_click = [this] { Help(); };
  SetDefaultButton(cmdOK);
  SetCancelButton(cmdCancel);
}

void fConfig::SetUpAccounts() {
  constexpr TextView kLabels[kBoxes] = {u"Name", u"Connect to", u"User name", u"Password",
                                        u"POP3 Port"};
  lblAccounts.SetCaption(u"POP3 Mail Accounts");
  lstPop3Account.SetAccessibleName(u"POP3 Mail Accounts");
  lstPop3Account.on_click = [this] { AccountClicked(); };
  cmdPOP3[0].SetCaption(u"New");
  cmdPOP3[0].on_click = [this] { NewAccount(); };
  cmdPOP3[1].SetCaption(u"&Delete");
  cmdPOP3[1].on_click = [this] { DeleteAccount(); };
  fraAccount.SetCaption(u"Account");
  for (size_t i = 0; i < kBoxes; ++i) {
    lblPop3Account[i].SetCaption(Text(kLabels[i]));
    txtPop3Account[i].SetAccessibleName(Text(kLabels[i]));
  }
  txtPop3Account[kPassword].SetPassword(true);
  chkSavePassword.SetCaption(u"Save password");
  lblNote.SetCaption(u"All POP3 account informations are stored in the registry.");
  lblNote.SetWraps(true);
}

void fConfig::SetUpKeywords(KeywordEditor& editor) {
  editor.buttons[kAdd].SetCaption(u"&Add");
  editor.buttons[kAdd].on_click = [this, &editor] { AddKeyword(editor); };
  editor.buttons[kRename].SetCaption(u"&Rename");
  editor.buttons[kRename].on_click = [this, &editor] { RenameKeyword(editor); };
  editor.buttons[kDelete].SetCaption(u"&Delete");
  editor.buttons[kDelete].on_click = [&editor] { DeleteKeyword(editor); };
}

void fConfig::SetUpOptions() {
  const auto name = [](Label& label, TextBox& box, TextView text) {
    label.SetCaption(Text(text));
    box.SetAccessibleName(Text(text));
  };
  name(lblPOP3DownLines, txtPOP3DownLines, u"Lines to download");
  name(lblPOP3CheckTime, txtPOP3CheckTime, u"Time interval for checking mail box (min)");
  name(lblPOP3WaitTime, txtPOP3WaitTime, u"Waiting time for POP3 command response (sec)");
  name(lblPOP3SoundFile, txtPOP3SoundFile, u"Sound notification");
  name(lblDefEmailClient, txtDefEmailClient, u"Default email client");
  const auto describe = [](CommandButton& button, TextView caption, TextView tooltip) {
    button.SetCaption(Text(caption));
    button.SetTooltip(Text(tooltip));
    button.SetAccessibleName(Text(tooltip));
  };
  describe(cmdPop3Sound[0], u"Test", u"Test wave file");
  describe(cmdPop3Sound[1], u"...", u"Select wave file for email notification");
  describe(cmdDefEmailClient, u"...", u"Select default email client");
  chkPop3ManualCheck.SetCaption(u"Manual checking");
  chkPop3ManualCheck.on_click = [this] { ManualCheckClicked(); };
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

void fConfig::AddAll() {
  const std::initializer_list<Control*> kSingles = {&SSTab1,
                                                    &lblAccounts,
                                                    &lstPop3Account,
                                                    &fraAccount,
                                                    &chkSavePassword,
                                                    &lblNote,
                                                    &lblSpamSender,
                                                    &lstSpamSender,
                                                    &lblSpamSubject,
                                                    &lstSpamSubject,
                                                    &lblPOP3DownLines,
                                                    &txtPOP3DownLines,
                                                    &lblPOP3CheckTime,
                                                    &txtPOP3CheckTime,
                                                    &lblPOP3WaitTime,
                                                    &txtPOP3WaitTime,
                                                    &chkPop3ManualCheck,
                                                    &lblPOP3SoundFile,
                                                    &txtPOP3SoundFile,
                                                    &lblDefEmailClient,
                                                    &txtDefEmailClient,
                                                    &cmdDefEmailClient,
                                                    &cmdOK,
                                                    &cmdCancel,
                                                    &cmdHelp};
  for (Control* control : kSingles) Add(*control);
  for (Label& label : lblPop3Account) Add(label);
  for (TextBox& box : txtPop3Account) Add(box);
  for (CommandButton& button : cmdPOP3) Add(button);
  for (CommandButton& button : cmdSpamSender) Add(button);
  for (CommandButton& button : cmdSpamSubject) Add(button);
  for (CommandButton& button : cmdPop3Sound) Add(button);
}

Layout fConfig::AccountsPage() {
  fraAccount.content = AccountFields();
  Layout list = Column(
      {Item(lblAccounts), Item(lstPop3Account, 1), Row({Item(cmdPOP3[0]), Item(cmdPOP3[1])})}, 2);
  return Column({Row({std::move(list), Item(fraAccount, 3)}, 1), Item(lblNote)});
}

Layout fConfig::AccountFields() {
  std::vector<Layout> fields;
  for (size_t i = 0; i < kBoxes; ++i) {
    fields.push_back(Item(lblPop3Account[i]));
    fields.push_back(Item(txtPop3Account[i]));
  }
  fields.push_back(Space(0));
  fields.push_back(Item(chkSavePassword));
  return Column({Grid(2, std::move(fields)), Space()});
}

Layout fConfig::KeywordColumn(Label& label, KeywordEditor& editor) {
  return Column({Item(label), Item(editor.list, 1),
                 Row({Item(editor.buttons[kAdd]), Item(editor.buttons[kRename]),
                      Item(editor.buttons[kDelete])})},
                1);
}

Layout fConfig::OptionsPage() {
  Layout numbers = Grid(2, {Item(lblPOP3DownLines), Item(txtPOP3DownLines), Item(lblPOP3CheckTime),
                            Item(txtPOP3CheckTime), Item(lblPOP3WaitTime), Item(txtPOP3WaitTime)});
  return Column({std::move(numbers), Item(chkPop3ManualCheck), Item(lblPOP3SoundFile),
                 Row({Item(txtPOP3SoundFile, 1), Item(cmdPop3Sound[0]), Item(cmdPop3Sound[1])}),
                 Item(lblDefEmailClient),
                 Row({Item(txtDefEmailClient, 1), Item(cmdDefEmailClient)}), Space()});
}

void fConfig::OnLoad() {
  CentreForm(*this, GetToolkit());
  FillOptions();
  FillKeywords(lstSpamSender, configuration_.SpamSenders);
  FillKeywords(lstSpamSubject, configuration_.SpamSubjects);
  FillAccounts();
  if (lstPop3Account.Count() > 0) lstPop3Account.SetListIndex(0);
  EnableAccountBoxes();
  ApplyFont(*this, GetToolkit(), font_name_);
}

void fConfig::OnUnload() {
  shown_account_ = -1;
  for (ListBox* list : {&lstPop3Account, &lstSpamSender, &lstSpamSubject}) list->Clear();
}

void fConfig::FillOptions() {
  txtPOP3DownLines.SetText(Decimal(configuration_.DownLines));
  txtPOP3CheckTime.SetText(Decimal(configuration_.CheckInterval));
  txtPOP3WaitTime.SetText(Decimal(configuration_.WaitTime));
  txtPOP3SoundFile.SetText(configuration_.SoundFile);
  txtDefEmailClient.SetText(configuration_.DefaultEmailClient);
  chkPop3ManualCheck.SetValue(configuration_.ManualChecking != 0 ? 1 : 0);
  ManualCheckClicked();
}

/// Selects nothing: what the boxes showed belonged to the list as it was.
void fConfig::FillAccounts() {
  shown_account_ = -1;
  lstPop3Account.Clear();
  for (TextBox& box : txtPop3Account) box.SetText({});
  for (int32_t n = 1; n <= configuration_.Accounts.Count(); ++n) {
    lstPop3Account.AddItem(configuration_.AccountAt(n).name);
  }
}

void fConfig::EnableAccountBoxes() {
  const bool enabled = SelectedAccount() >= 0;
  for (TextBox& box : txtPop3Account) box.SetEnabled(enabled);
  chkSavePassword.SetEnabled(enabled);
}

void fConfig::AccountClicked() {
  IgnoreErrors([&] { StoreShownAccount(); });
  ShowAccount(SelectedAccount());
  EnableAccountBoxes();
}

void fConfig::ShowAccount(int index) {
  shown_account_ = index;
  if (index < 0) return;
  const Account account = configuration_.AccountAt(index + 1);
  // Another account's password never stays in the box where this one's cannot be unscrambled.
  Text password;
  IgnoreErrors([&] { password = Decrypt(account.password, locale_); });
  txtPop3Account[kName].SetText(account.name);
  txtPop3Account[kServer].SetText(account.server);
  txtPop3Account[kUser].SetText(account.user);
  txtPop3Account[kPassword].SetText(std::move(password));
  txtPop3Account[kPort].SetText(IsNumeric(account.port) ? account.port : DefaultPort());
  IgnoreErrors([&] { chkSavePassword.SetValue(ToInt32(TextView(account.save_password))); });
}

void fConfig::StoreShownAccount() {
  if (shown_account_ < 0 || shown_account_ >= lstPop3Account.Count()) return;
  if (txtPop3Account[kName].GetText().empty()) return;
  TrimAccountBoxes();
  lstPop3Account.SetItem(shown_account_, txtPop3Account[kName].GetText());
  const auto typed = [this](AccountBox box) { return txtPop3Account[box].GetText(); };
  configuration_.ReplaceAccount(shown_account_ + 1,
                                {.name = typed(kName),
                                 .server = typed(kServer),
                                 .user = typed(kUser),
                                 .password = Encrypt(typed(kPassword), locale_),
                                 .port = typed(kPort),
                                 .save_password = Decimal(chkSavePassword.Value())});
}

void fConfig::TrimAccountBoxes() {
  for (TextBox& box : txtPop3Account) box.SetText(Text(Trim(box.GetText())));
  TextBox& port = txtPop3Account[kPort];
  if (!IsNumeric(port.GetText())) port.SetText(DefaultPort());
}

void fConfig::NewAccount() {
  IgnoreErrors([&] { StoreShownAccount(); });
  configuration_.AddAccount(
      {.name = Text(kNewAccount) + Decimal(configuration_.Accounts.Count() + 1), .unstored = u"0"});
  FillAccounts();
  SelectNear(lstPop3Account, lstPop3Account.Count());
}

void fConfig::DeleteAccount() {
  const int position = SelectedAccount();
  if (position < 0) return;
  IgnoreErrors([&] { StoreShownAccount(); });
  configuration_.Accounts.Remove(position + 1);
  FillAccounts();
  SelectNear(lstPop3Account, position);
  EnableAccountBoxes();
}

void fConfig::AddKeyword(KeywordEditor& editor) {
  Text keyword = InputBox(GetToolkit(), editor.prompt, u"New Spam Mail");
  if (!keyword.empty() && IsLoaded()) editor.list.AddItem(std::move(keyword));
}

void fConfig::RenameKeyword(KeywordEditor& editor) {
  const int index = editor.list.ListIndex();
  if (index < 0) return;
  Text keyword =
      InputBox(GetToolkit(), editor.prompt, u"Rename Spam Mail", editor.list.Item(index));
  // The host may have unloaded this window, and emptied its lists, under the box.
  if (!keyword.empty() && IsLoaded()) editor.list.SetItem(index, std::move(keyword));
}

void fConfig::DeleteKeyword(KeywordEditor& editor) {
  const int index = editor.list.ListIndex();
  if (index < 0) return;
  editor.list.RemoveItem(index);
  SelectNear(editor.list, index);
}

void fConfig::ManualCheckClicked() { txtPOP3CheckTime.SetEnabled(chkPop3ManualCheck.Value() == 0); }

void fConfig::PickFile(TextBox& box, const Text& title, const Text& filter, const Text& extension) {
  Text path = GetToolkit().OpenFile(title, filter, extension);
  if (!path.empty()) box.SetText(std::move(path));
}

void fConfig::Confirm() {
  IgnoreErrors([&] { StoreShownAccount(); });
  if (!TakeOptions()) return;
  configuration_.SpamSenders = Keywords(lstSpamSender);
  configuration_.SpamSubjects = Keywords(lstSpamSubject);
  store_.Save(configuration_);
  Unload();
}

/// All or nothing; false when the user has to mend a number first.
bool fConfig::TakeOptions() {
  int32_t down_lines = 0, check_interval = 0, wait_time = 0;
  if (!ReadNumber(txtPOP3DownLines, lblPOP3DownLines, down_lines) ||
      !ReadNumber(txtPOP3CheckTime, lblPOP3CheckTime, check_interval) ||
      !ReadNumber(txtPOP3WaitTime, lblPOP3WaitTime, wait_time)) {
    return false;
  }
  configuration_.DownLines = down_lines;
  configuration_.CheckInterval = check_interval;
  configuration_.WaitTime = wait_time;
  configuration_.SoundFile = txtPOP3SoundFile.GetText();
  configuration_.DefaultEmailClient = txtDefEmailClient.GetText();
  configuration_.ManualChecking = chkPop3ManualCheck.Value();
  return true;
}

bool fConfig::ReadNumber(TextBox& box, const Label& label, int32_t& number) {
  if (IgnoreErrors([&] { number = ToInt32(TextView(box.GetText())); })) return true;
  GetToolkit().ShowMessage(u"Please type a number.", label.Caption(), MessageIcon::kExclamation);
  SelectPage(kOptionPage);
  box.SetEnabled(true);  // manual checking may have disabled it, but it must be mended
  box.SetFocus();
  return false;
}

void fConfig::Cancel() {
  canceled_ = true;
  store_.Load(configuration_);
  Unload();
}

void fConfig::Help() {
  GetToolkit().ShowMessage(
      u"\r\n1. All passwords are stored as encrypted text for the password protection.\r\n"
      u"2. All POP3 email account details are stored in Registry.",
      {}, MessageIcon::kInformation);
}

}  // namespace vesko
