#pragma once

#include <functional>

#include "base/Text.h"
#include "config/mRegistry.h"
#include "dialogs/AccountsPage.h"
#include "dialogs/OptionsPage.h"
#include "dialogs/SpamPage.h"
#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// Pages of the settings window.
inline constexpr int kAccountsPage = 0;
inline constexpr int kSpamPage = 1;
inline constexpr int kOptionPage = 2;

/// The settings window. Accounts are edited in place; OK takes over the rest and saves everything,
/// Cancel and closing the window load everything again, which discards every edit.
class fConfig : public Form {
 public:
  using PlaySound = std::function<void(const Text& path)>;

  /// All references must outlive the window. `play_sound` lets the user hear a wave file.
  fConfig(Toolkit& toolkit, const Services& services, SharedData& data, mRegistry& store,
          PlaySound play_sound);
  ~fConfig() override;

  /// Turns to a page, before or while the window is shown.
  void SelectPage(int page) { SSTab1.SetTab(page); }

  /// The window was left by Cancel or closed at least once; nothing sets it back.
  bool Canceled() const { return canceled_; }

 private:
  void OnLoad() override;
  void OnUnload() override;
  void OnClose() override { Cancel(); }

  void SetUp();
  void Confirm();
  void Cancel();
  void Help();

  Configuration& configuration_;
  mRegistry& store_;
  const Text& font_name_;
  bool canceled_ = false;

  TabControl SSTab1{*this, "SSTab1"};
  AccountsPage accounts_;
  SpamPage spam_;
  OptionsPage options_;
  CommandButton cmdOK{*this, "cmdOK"};
  CommandButton cmdCancel{*this, "cmdCancel"};
  CommandButton cmdHelp{*this, "cmdHelp"};
};

}  // namespace vesko
