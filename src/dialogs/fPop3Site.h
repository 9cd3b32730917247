#pragma once

#include <array>

#include "base/Text.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// Asks for the connection data of one account while a check runs. Made for each question: set the
/// properties, ShowModal, then read Canceled and, when it is false, the properties. Touches no
/// settings.
///
/// OK is enabled while server, user name and password all hold something; Enter in one of the boxes
/// presses it. What OK hands over has no line ends and no control characters, even where the
/// properties had some.
class fPop3Site : public Form {
 public:
  /// Both must outlive the window; the font's name is read when it loads.
  fPop3Site(Toolkit& toolkit, const Text& font_name);
  ~fPop3Site() override;

  // What the boxes show first, and after OK what they held.
  Text Server;
  Text User;
  Text Password;  // plain
  bool SavePassword = false;

  /// The user left by Cancel or closed the window; the properties are as they were given then.
  bool Canceled() const { return canceled_; }

 private:
  void OnLoad() override;
  void OnActivate() override;
  /// Closing by the frame is the same as Cancel.
  void OnClose() override { Cancel(); }

  void SetUp();
  void Arrange();
  /// Follows every change of a text.
  void EnableOk();
  /// True when the key was used up.
  bool OnBoxKey(int key_code);
  /// OK: the properties take over what the boxes hold.
  void Confirm();
  void Cancel();
  void Help();

  const Text& font_name_;
  bool canceled_ = false;

  Frame fraAccount{*this, "fraAccount"};
  ControlArray<Label, 3> lblPop3Account{*this, "lblPop3Account"};
  ControlArray<TextBox, 3> txtPop3Account{*this, "txtPop3Account"};
  CheckBox chkSavePassword{*this, "chkSavePassword"};
  CommandButton cmdOK{*this, "cmdOK"};
  CommandButton cmdCancel{*this, "cmdCancel"};
  CommandButton cmdHelp{*this, "cmdHelp"};
};

}  // namespace vesko
