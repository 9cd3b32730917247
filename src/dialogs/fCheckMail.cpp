#include "dialogs/fCheckMail.h"

#include "base/RunTimeError.h"
#include "dialogs/fPop3Site.h"
#include "ui/QuestionBox.h"
#include "ui/mVeskoMain.h"
#include "ui/mmWinDefs.h"

namespace vesko {
namespace {

constexpr int kWidth = 420;
constexpr int kHeight = 150;
constexpr TextView kCaption = u"Checking mail box ...";

}  // namespace

fCheckMail::fCheckMail(Toolkit& toolkit, const Services& services, SharedData& data)
    : Form("fCheckMail", toolkit), font_name_(data.font_name), run_(services, data, *this) {
  Resize(kWidth, kHeight);
  SetUp();
  Arrange();
}

fCheckMail::~fCheckMail() { TakeDown(); }

void fCheckMail::SetUp() {
  for (Label* label : {&lblProgress, &lblTime, &lblCmd}) label->SetLiteral(true);
  prgBar1.SetAccessibleName(u"Messages of this account");
  cmdNext.SetCaption(u"&Next");
  cmdNext.SetTooltip(u"Go on with the next account");
  cmdNext.on_click = [this] { run_.Next(); };
  cmdCancel.SetCaption(u"&Cancel");
  cmdCancel.on_click = [this] { run_.Cancel(); };
  SetCancelButton(cmdCancel);
  SetFirstInTabOrder(cmdNext);
}

void fCheckMail::Arrange() {
  SetLayout(Column({Item(lblProgress), Item(prgBar1), Item(lblTime), Item(lblCmd), Space(),
                    Row({Space(), Item(cmdNext), Item(cmdCancel)})}));
}

void fCheckMail::OnLoad() {
  CentreForm(*this, GetToolkit());
  SetCaption(Text(kCaption));
  for (Label* label : {&lblProgress, &lblTime, &lblCmd}) label->SetCaption({});
  prgBar1.SetValue(0);
  ApplyFont(*this, GetToolkit(), font_name_);
}

void fCheckMail::OnActivate() {
  run_.Activate();
  SetFirstInTabOrder(cmdNext);
}

void fCheckMail::ShowTime(const Text& text) {
  lblTime.SetCaption(text);
  lblTime.Refresh();
}

void fCheckMail::SetProgressMaximum(int32_t maximum) {
  IgnoreErrors([&] { prgBar1.SetMaximum(maximum); });
}

void fCheckMail::SetProgressValue(int32_t value) {
  IgnoreErrors([&] { prgBar1.SetValue(value); });
}

void fCheckMail::ShowError(const Text& text, const Text& title) {
  GetToolkit().ShowMessage(text, title, MessageIcon::kExclamation);
}

int fCheckMail::AskRetry(const Text& question, const Text& title) {
  return QuestionBox(GetToolkit(), question, title, {u"&Yes", u"&No", u"", u"", u""});
}

bool fCheckMail::AskCredentials(Credentials& credentials) {
  fPop3Site site(GetToolkit(), font_name_);
  site.Server = credentials.server;
  site.User = credentials.user;
  site.Password = credentials.password;
  site.SavePassword = credentials.save_password;
  site.ShowModal();
  if (site.Canceled()) return false;
  credentials = {site.Server, site.User, site.Password, site.SavePassword};
  return true;
}

}  // namespace vesko
