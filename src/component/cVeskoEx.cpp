#include "component/cVeskoEx.h"

#include "base/RunTimeError.h"
#include "component/NewMailSound.h"
#include "config/SettingsTrouble.h"
#include "dialogs/fCheckMail.h"
#include "dialogs/fConfig.h"
#include "dialogs/fListMail.h"
#include "ui/QuestionBox.h"

namespace vesko {
namespace {

/// Busy from its beginning; free at its end, within another operation too.
class Busy {
 public:
  explicit Busy(ComponentState& state) : state_(state) { state_.busy = true; }
  ~Busy() { state_.busy = false; }
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

 private:
  ComponentState& state_;
};

/// Closing the box counts as No.
bool UserSaysYes(Toolkit& toolkit, const Text& question) {
  return QuestionBox(toolkit, question, Text(kApplicationTitle),
                     {u"&Yes", u"&No", u"", u"", u""}) == 0;
}

/// Runs a step that may fail in any way without stopping the next.
template <typename Step>
void Attempt(Step&& step) noexcept {
  try {
    step();
  } catch (...) {
  }
}

}  // namespace

cVeskoEx::cVeskoEx(ComponentState& state) : state_(state) {
  state_.Store().Load(state_.data.configuration);
}

cVeskoEx::~cVeskoEx() {
  // An exception that left a destructor would end the host's process.
  Attempt([this] {
    while (state_.data.mails.Count() > 0) state_.data.mails.RemoveFirst();
  });
  Attempt([this] { state_.Store().Save(state_.data.configuration); });
  Attempt([this] { UnloadWindows(); });
}

void cVeskoEx::SetFont(const Text& sFontName, int32_t hFont) {
  state_.data.font_name = sFontName;
  state_.font_handle = hFont;
}

void cVeskoEx::Configure() {
  const Busy busy(state_);
  TellTrouble();
  state_.ConfigWindow().SelectPage(kAccountsPage);
  state_.ConfigWindow().ShowModal();
}

int32_t cVeskoEx::CheckTime() const {
  const Configuration& settings = state_.data.configuration;
  const bool automatic = settings.ManualChecking == 0 && settings.CheckInterval != 0;
  return automatic ? settings.CheckInterval : -1;
}

void cVeskoEx::CheckMail() {
  const Busy busy(state_);
  TellTrouble();
  if (state_.data.configuration.Accounts.Count() == 0) IgnoreErrors([&] { OfferConfiguration(); });
  if (state_.data.configuration.Accounts.Count() == 0) return;
  IgnoreErrors([&] { state_.CheckWindow().Prepare(); });
  IgnoreErrors([&] { state_.CheckWindow().ShowModal(); });
  IgnoreErrors([&] { ReportResult(); });
}

void cVeskoEx::ViewMail() {
  const Busy busy(state_);
  TellTrouble();
  if (state_.data.mails.Count() > 0) {
    state_.ListWindow().ShowModal();
  } else if (UserSaysYes(state_.GetToolkit(), u"You have no mails. Check POP3 mail server now ?")) {
    CheckMail();
  }
}

void cVeskoEx::TellTrouble() {
  const int32_t status = state_.Store().LoadStatus();
  const bool tell = status != kStatusSuccess && !state_.trouble_told;
  state_.trouble_told = status != kStatusSuccess;
  if (!tell) return;
  IgnoreErrors([&] {
    state_.GetToolkit().ShowMessage(TroubleOfLoad(status), {}, MessageIcon::kExclamation);
  });
}

void cVeskoEx::OfferConfiguration() {
  if (UserSaysYes(state_.GetToolkit(),
                  u"You have no POP3 mail account. Config POP3 mail account now ?")) {
    state_.ConfigWindow().ShowModal();
  }
}

void cVeskoEx::ReportResult() {
  if (!state_.CheckWindow().NewMail()) {
    state_.GetToolkit().ShowMessage(u"You have no mail not read.", {}, MessageIcon::kInformation);
    return;
  }
  PlayNewMailSound(state_.GetServices().sound, state_.data.configuration.SoundFile);
  state_.ListWindow().ShowModal();
}

void cVeskoEx::UnloadWindows() {
  if (unloading_windows_) return;
  unloading_windows_ = true;
  state_.UnloadWindows();
  unloading_windows_ = false;
}

}  // namespace vesko
