#include "component/ComponentState.h"

#include "base/RunTimeError.h"
#include "component/NewMailSound.h"
#include "dialogs/fCheckMail.h"
#include "dialogs/fConfig.h"
#include "dialogs/fListMail.h"

namespace vesko {

ComponentState::ComponentState(Desktop& desktop)
    : desktop_(desktop), store_(desktop.GetRegistry(), desktop.GetLocale(), desktop.GetShell()) {}

ComponentState::~ComponentState() = default;

fCheckMail& ComponentState::CheckWindow() {
  if (!check_window_) {
    socket_ = desktop_.NewSocket();
    check_window_ = std::make_unique<fCheckMail>(
        fCheckMail::Needs{desktop_.GetToolkit(), desktop_.GetLocale(), configuration, mails,
                          *socket_, desktop_.GetClock(), font_name});
  }
  return *check_window_;
}

fListMail& ComponentState::ListWindow() {
  if (!list_window_) {
    list_window_ = std::make_unique<fListMail>(
        fListMail::Needs{desktop_.GetToolkit(), desktop_.GetLocale(), configuration, mails,
                         desktop_.GetShell(), ConfigWindow(), CheckWindow(), font_name});
  }
  return *list_window_;
}

fConfig& ComponentState::ConfigWindow() {
  if (!config_window_) {
    const auto play = [this](const Text& path) { PlayNewMailSound(desktop_.GetSound(), path); };
    config_window_ = std::make_unique<fConfig>(fConfig::Needs{
        desktop_.GetToolkit(), desktop_.GetLocale(), configuration, store_, play, font_name});
  }
  return *config_window_;
}

void ComponentState::UnloadWindows() {
  const std::initializer_list<Form*> kWindows = {check_window_.get(), list_window_.get(),
                                                 config_window_.get()};
  for (Form* window : kWindows) {
    if (window) IgnoreErrors([&] { window->Unload(); });
  }
}

}  // namespace vesko
