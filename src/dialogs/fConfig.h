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

/// Pages of the settings window, by their place in the tab control.
inline constexpr int kAccountsPage = 0;
inline constexpr int kSpamPage = 1;
inline constexpr int kOptionPage = 2;

/// The settings window, with a class for each page. Accounts are edited in place; OK takes over the
/// rest and saves everything, Cancel and closing the window load everything again, which discards
/// every edit. OK with a number that cannot be read says so, changes none of the options and keeps
/// the window.
///
/// The window may be shown any number of times; each time it shows what the configuration holds.
class fConfig : public Form {
 public:
  /// Plays the wave file at a path in the background; silence where it cannot.
  using PlaySound = std::function<void(const Text& path)>;

  /// All references must outlive the window. `play_sound` lets the user hear a wave file; it gets
  /// the path as it was typed.
  fConfig(Toolkit& toolkit, const Services& services, SharedData& data, mRegistry& store,
          PlaySound play_sound);
  ~fConfig() override;

  /// Turns to a page, before or while the window is shown. The page stays until the user or the
  /// program turns to another, from one showing to the next.
  void SelectPage(int page) { SSTab1.SetTab(page); }

  /// The window was left by Cancel or closed at least once; nothing sets it back.
  bool Canceled() const { return canceled_; }

 private:
  void OnLoad() override;
  void OnUnload() override;
  /// Closing by the frame is the same as Cancel.
  void OnClose() override { Cancel(); }

  void SetUp();
  /// OK: stays open where a number has to be corrected.
  void Confirm();
  /// Discards what was edited by loading the stored settings again.
  void Cancel();
  /// Says in a box how passwords and accounts are stored.
  void Help();

  Configuration& configuration_;
  mRegistry& store_;
  const Text& font_name_;
  bool canceled_ = false;

  TabControl SSTab1{*this, "SSTab1"};
  // The pages, in their order.
  AccountsPage accounts_;
  SpamPage spam_;
  OptionsPage options_;
  CommandButton cmdOK{*this, "cmdOK"};
  CommandButton cmdCancel{*this, "cmdCancel"};
  CommandButton cmdHelp{*this, "cmdHelp"};
};

}  // namespace vesko
