#include "dialogs/fConfig.h"

#include <utility>

#include "config/SettingsTrouble.h"
#include "ui/mVeskoMain.h"
#include "ui/mmWinDefs.h"

namespace vesko {
namespace {

constexpr int kWidth = 520;
constexpr int kHeight = 380;

}  // namespace

fConfig::fConfig(Toolkit& toolkit, const Services& services, SharedData& data, mRegistry& store,
                 PlaySound play_sound)
    : Form("fConfig", toolkit),
      configuration_(data.configuration),
      store_(store),
      font_name_(data.font_name),
      accounts_(*this, services.locale, data.configuration),
      spam_(*this, toolkit),
      options_(*this, toolkit, std::move(play_sound), [this] { SelectPage(kOptionPage); }) {
  SetCaption(u"POP3 Mail Configurarion");
  Resize(kWidth, kHeight);
  SetUp();
  SSTab1.pages = {{u"Accounts", accounts_.Arrange()},
                  {u"SPAM Mail Filter", spam_.Arrange()},
                  {u"POP3 Mail Option", options_.Arrange()}};
  SetLayout(Column({Item(SSTab1, 1), Row({Space(), Item(cmdOK), Item(cmdCancel), Item(cmdHelp)})}));
}

fConfig::~fConfig() { TakeDown(); }

void fConfig::SetUp() {
  cmdOK.SetCaption(u"&Ok");
  cmdOK.on_click = [this] { Confirm(); };
  cmdCancel.SetCaption(u"&Cancel");
  cmdCancel.on_click = [this] { Cancel(); };
  cmdHelp.SetCaption(u"&Help");
  cmdHelp.on_click = [this] { Help(); };
  SetDefaultButton(cmdOK);
  SetCancelButton(cmdCancel);
}

void fConfig::OnLoad() {
  CentreForm(*this, GetToolkit());
  options_.Load(configuration_);
  spam_.Load(configuration_);
  accounts_.Load();
  ApplyFont(*this, GetToolkit(), font_name_);
}

void fConfig::OnUnload() {
  accounts_.Clear();
  spam_.Clear();
}

void fConfig::Confirm() {
  accounts_.Store();
  if (!options_.Store(configuration_)) return;
  spam_.Store(configuration_);
  const int32_t status = store_.Save(configuration_);
  if (status != kStatusSuccess) {
    GetToolkit().ShowMessage(TroubleOfSave(status, store_.LoadStatus()), {},
                             MessageIcon::kExclamation);
  }
  Unload();
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
