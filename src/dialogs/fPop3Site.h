#pragma once

#include <array>

#include "base/Text.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// Asks for the connection data of one account while a check runs. Made for each asking: set the
/// properties, ShowModal, then read Canceled and, when it is false, the properties. Touches no
/// settings.
class fPop3Site : public Form {
 public:
  /// Both must outlive the window.
  fPop3Site(Toolkit& toolkit, const Text& font_name);
  ~fPop3Site() override;

  Text Server;
  Text User;
  Text Password;  // plain
  bool SavePassword = false;

  /// The user left by Cancel or closed the window; the properties are as they were given then.
  bool Canceled() const { return canceled_; }

 private:
  void OnLoad() override;
  void OnActivate() override;
  void OnClose() override { Cancel(); }

  void SetUp();
  void Arrange();
  void EnableOk();
  bool OnBoxKey(int key_code);
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
