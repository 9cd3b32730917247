#include "dialogs/AccountsPage.h"

#include <algorithm>
#include <utility>

#include "base/RunTimeError.h"
#include "config/mmEncrypt.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

/// The boxes of an account, in their order.
enum AccountBox : size_t { kName, kServer, kUser, kPassword, kPort, kBoxes };

Text DefaultPort() { return Decimal(kPop3Port); }

}  // namespace

AccountsPage::AccountsPage(Form& form, const Locale& locale, Configuration& configuration)
    : locale_(locale),
      configuration_(configuration),
      lblAccounts(form, "lblAccounts"),
      lstPop3Account(form, "lstPop3Account"),
      cmdPOP3(form, "cmdPOP3"),
      fraAccount(form, "fraAccount"),
      lblPop3Account(form, "lblPop3Account"),
      txtPop3Account(form, "txtPop3Account"),
      chkSavePassword(form, "chkSavePassword"),
      lblNote(form, "lblNote") {
  SetUp();
}

void AccountsPage::SetUp() {
  constexpr TextView kLabels[kBoxes] = {u"Name", u"Connect to", u"User name", u"Password",
                                        u"POP3 Port"};
  lblAccounts.SetCaption(u"POP3 Mail Accounts");
  lstPop3Account.SetAccessibleName(u"POP3 Mail Accounts");
  lstPop3Account.on_click = [this] { Clicked(); };
  cmdPOP3[0].SetCaption(u"New");
  cmdPOP3[0].on_click = [this] { New(); };
  cmdPOP3[1].SetCaption(u"&Delete");
  cmdPOP3[1].on_click = [this] { Delete(); };
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

Layout AccountsPage::Arrange() {
  fraAccount.content = ArrangeBoxes();
  Layout list = Column(
      {Item(lblAccounts), Item(lstPop3Account, 1), Row({Item(cmdPOP3[0]), Item(cmdPOP3[1])})}, 2);
  return Column({Row({std::move(list), Item(fraAccount, 3)}, 1), Item(lblNote)});
}

Layout AccountsPage::ArrangeBoxes() {
  std::vector<Layout> fields;
  for (size_t i = 0; i < kBoxes; ++i) {
    fields.push_back(Item(lblPop3Account[i]));
    fields.push_back(Item(txtPop3Account[i]));
  }
  fields.push_back(Space(0));
  fields.push_back(Item(chkSavePassword));
  return Column({Grid(2, std::move(fields)), Space()});
}

void AccountsPage::Load() {
  List();
  if (lstPop3Account.Count() > 0) lstPop3Account.SetListIndex(0);
  EnableBoxes();
}

void AccountsPage::Store() {
  IgnoreErrors([&] { WriteBack(); });
}

void AccountsPage::Clear() {
  shown_ = -1;
  lstPop3Account.Clear();
}

/// Leaves nothing selected and the boxes empty: they belonged to the list as it was.
void AccountsPage::List() {
  Clear();
  for (TextBox& box : txtPop3Account) box.SetText({});
  for (int32_t n = 1; n <= configuration_.Accounts.Count(); ++n) {
    lstPop3Account.AddItem(configuration_.AccountAt(n).name);
  }
}

void AccountsPage::EnableBoxes() {
  const bool enabled = Selected() >= 0;
  for (TextBox& box : txtPop3Account) box.SetEnabled(enabled);
  chkSavePassword.SetEnabled(enabled);
}

void AccountsPage::Show(int index) {
  shown_ = index;
  if (index < 0) return;
  const Account account = configuration_.AccountAt(index + 1);
  // When this password cannot be unscrambled, the box must not keep that of another account.
  Text password;
  IgnoreErrors([&] { password = Decrypt(account.password, locale_); });
  txtPop3Account[kName].SetText(account.name);
  txtPop3Account[kServer].SetText(account.server);
  txtPop3Account[kUser].SetText(account.user);
  txtPop3Account[kPassword].SetText(std::move(password));
  txtPop3Account[kPort].SetText(IsNumeric(account.port) ? account.port : DefaultPort());
  IgnoreErrors([&] { chkSavePassword.SetValue(ToInt32(TextView(account.save_password))); });
}

void AccountsPage::WriteBack() {
  if (shown_ < 0 || shown_ >= lstPop3Account.Count()) return;
  if (txtPop3Account[kName].GetText().empty()) return;
  TrimBoxes();
  lstPop3Account.SetItem(shown_, txtPop3Account[kName].GetText());
  const auto typed = [this](AccountBox box) { return txtPop3Account[box].GetText(); };
  configuration_.ReplaceAccount(shown_ + 1, {.name = typed(kName),
                                             .server = typed(kServer),
                                             .user = typed(kUser),
                                             .password = Encrypt(typed(kPassword), locale_),
                                             .port = typed(kPort),
                                             .save_password = Decimal(chkSavePassword.Value())});
}

void AccountsPage::TrimBoxes() {
  for (TextBox& box : txtPop3Account) box.SetText(Text(Trim(box.GetText())));
  TextBox& port = txtPop3Account[kPort];
  if (!IsNumeric(port.GetText())) port.SetText(DefaultPort());
}

void AccountsPage::Clicked() {
  Store();
  Show(Selected());
  EnableBoxes();
}

void AccountsPage::New() {
  Store();
  configuration_.AddAccount(
      {.name = u"New" + Decimal(configuration_.Accounts.Count() + 1), .unstored = u"0"});
  List();
  lstPop3Account.SetListIndex(lstPop3Account.Count() - 1);
}

void AccountsPage::Delete() {
  const int position = Selected();
  if (position < 0) return;
  Store();
  configuration_.Accounts.Remove(position + 1);
  List();
  lstPop3Account.SetListIndex(std::min(position, lstPop3Account.Count() - 1));
  EnableBoxes();
}

}  // namespace vesko
