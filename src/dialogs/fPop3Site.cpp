#include "dialogs/fPop3Site.h"

#include "ui/mVeskoMain.h"
#include "ui/mmWinDefs.h"

namespace vesko {
namespace {

constexpr int kWidth = 340;
constexpr int kHeight = 200;
constexpr int kServer = 0;
constexpr int kUser = 1;
constexpr int kPassword = 2;

}  // namespace

fPop3Site::fPop3Site(Toolkit& toolkit, const Text& font_name)
    : Form("fPop3Site", toolkit), font_name_(font_name) {
  SetCaption(u"POP3 Server Connection");
  Resize(kWidth, kHeight);
  SetUp();
  Arrange();
}

fPop3Site::~fPop3Site() { TakeDown(); }

void fPop3Site::SetUp() {
  constexpr TextView kLabels[] = {u"Connect to", u"User name", u"Password"};
  fraAccount.SetCaption(u"Account");
  for (size_t i = 0; i < 3; ++i) {
    lblPop3Account[i].SetCaption(Text(kLabels[i]));
    txtPop3Account[i].SetAccessibleName(Text(kLabels[i]));
    txtPop3Account[i].on_change = [this] { EnableOk(); };
    txtPop3Account[i].on_key_down = [this](int key_code) { return OnBoxKey(key_code); };
  }
  txtPop3Account[kPassword].SetPassword(true);
  chkSavePassword.SetCaption(u"Save password");
  cmdOK.SetCaption(u"&Ok");
  cmdOK.on_click = [this] { Confirm(); };
  cmdCancel.SetCaption(u"&Cancel");
  cmdCancel.on_click = [this] { Cancel(); };
  cmdHelp.SetCaption(u"&Help");
  cmdHelp.on_click = [this] { Help(); };
  SetDefaultButton(cmdOK);
  SetCancelButton(cmdCancel);
}

void fPop3Site::Arrange() {
  std::vector<Layout> fields;
  for (size_t i = 0; i < 3; ++i) {
    fields.push_back(Item(lblPop3Account[i]));
    fields.push_back(Item(txtPop3Account[i]));
  }
  fields.push_back(Space(0));
  fields.push_back(Item(chkSavePassword));
  fraAccount.content = Grid(2, std::move(fields));
  SetLayout(
      Column({Item(fraAccount, 1), Row({Space(), Item(cmdOK), Item(cmdCancel), Item(cmdHelp)})}));
}

void fPop3Site::OnLoad() {
  CentreForm(*this, GetToolkit());
  for (TextBox& box : txtPop3Account) box.SetText({});
  txtPop3Account[kServer].SetText(Server);
  txtPop3Account[kUser].SetText(User);
  txtPop3Account[kPassword].SetText(Password);
  chkSavePassword.SetValue(SavePassword ? 1 : 0);
  EnableOk();
  ApplyFont(*this, GetToolkit(), font_name_);
}

void fPop3Site::OnActivate() { txtPop3Account[kUser].SetFocus(); }

void fPop3Site::EnableOk() {
  bool complete = true;
  for (const TextBox& box : txtPop3Account) complete = complete && !box.GetText().empty();
  cmdOK.SetEnabled(complete);
}

bool fPop3Site::OnBoxKey(int key_code) {
  if (key_code != kKeyReturn) return false;
  cmdOK.Click();  // does nothing while it is disabled
  return true;
}

void fPop3Site::Confirm() {
  Server = txtPop3Account[kServer].GetText();
  User = txtPop3Account[kUser].GetText();
  Password = txtPop3Account[kPassword].GetText();
  SavePassword = chkSavePassword.Value() >= 1;
  Unload();
}

void fPop3Site::Cancel() {
  canceled_ = true;
  Unload();
}

void fPop3Site::Help() {
  GetToolkit().ShowMessage(
      u"\r\nIf all of them are correct but do not work, TRY IT LATER since POP3 server is so busy.",
      {}, MessageIcon::kInformation);
}

}  // namespace vesko
