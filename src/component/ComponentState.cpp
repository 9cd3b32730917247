#include "component/ComponentState.h"

#include "base/RunTimeError.h"
#include "component/NewMailSound.h"
#include "dialogs/fCheckMail.h"
#include "dialogs/fConfig.h"
#include "dialogs/fListMail.h"

namespace vesko {

ComponentState::ComponentState(Desktop& desktop)
    : desktop_(desktop),
      store_(GetServices().registry, GetServices().locale, GetServices().shell) {}

ComponentState::~ComponentState() = default;

fCheckMail& ComponentState::CheckWindow() {
  if (!check_window_) {
    check_window_ = std::make_unique<fCheckMail>(GetToolkit(), GetServices(), data);
  }
  return *check_window_;
}

fListMail& ComponentState::ListWindow() {
  if (!list_window_) {
    list_window_ = std::make_unique<fListMail>(GetToolkit(), GetServices(), data, ConfigWindow(),
                                               CheckWindow());
  }
  return *list_window_;
}

fConfig& ComponentState::ConfigWindow() {
  if (!config_window_) {
    const auto play = [this](const Text& path) { PlayNewMailSound(GetServices().sound, path); };
    config_window_ = std::make_unique<fConfig>(GetToolkit(), GetServices(), data, store_, play);
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
