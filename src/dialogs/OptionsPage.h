#pragma once

#include <functional>

#include "config/Configuration.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// The page "POP3 Mail Option" of the settings window: the numbers of a check, the sound for new
/// mail, the mail program. Nothing that is typed is tested before Store, and files need not exist.
/// The interval cannot be edited while checking is manual.
class OptionsPage {
 public:
  /// The form owns the page; the toolkit must outlive it. `play_sound` tries the sound file,
  /// `turn_to_page` makes the page the visible one.
  OptionsPage(Form& form, Toolkit& toolkit, std::function<void(const Text& path)> play_sound,
              std::function<void()> turn_to_page);

  /// What stands on the page. Called once.
  Layout Arrange();

  /// Shows the options of a configuration.
  void Load(const Configuration& configuration);

  /// False, with the configuration unchanged, where a number cannot be read: the user has been told
  /// then and finds the page turned to and the box with the focus.
  bool Store(Configuration& configuration);

 private:
  // Captions, names for screen readers, and what the buttons do.
  void SetUp();
  void SetUpButtons();
  /// Enables the interval where checking is not manual.
  void ManualCheckClicked();
  /// Leaves the box as it is when the user picks nothing.
  void PickFile(TextBox& box, const Text& title, const Text& filter, const Text& extension);
  /// False when the text is no 32-bit number; the user has been told then, with the label as title.
  bool ReadNumber(TextBox& box, const Label& label, int32_t& number);

  Toolkit& toolkit_;
  std::function<void(const Text& path)> play_sound_;
  std::function<void()> turn_to_page_;

  // In the order in which they stand on the page.
  Label lblPOP3DownLines;
  TextBox txtPOP3DownLines;
  Label lblPOP3CheckTime;
  TextBox txtPOP3CheckTime;
  Label lblPOP3WaitTime;
  TextBox txtPOP3WaitTime;
  CheckBox chkPop3ManualCheck;
  Label lblPOP3SoundFile;
  TextBox txtPOP3SoundFile;
  ControlArray<CommandButton, 2> cmdPop3Sound;
  Label lblDefEmailClient;
  TextBox txtDefEmailClient;
  CommandButton cmdDefEmailClient;
};

}  // namespace vesko
