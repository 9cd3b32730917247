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

  Frame fraAccount{"fraAccount"};
  Label lblPop3Account[3]{Label{"lblPop3Account(0)"}, Label{"lblPop3Account(1)"},
                          Label{"lblPop3Account(2)"}};
  TextBox txtPop3Account[3]{TextBox{"txtPop3Account(0)"}, TextBox{"txtPop3Account(1)"},
                            TextBox{"txtPop3Account(2)"}};
  CheckBox chkSavePassword{"chkSavePassword"};
  CommandButton cmdOK{"cmdOK"};
  CommandButton cmdCancel{"cmdCancel"};
  CommandButton cmdHelp{"cmdHelp"};
};

}  // namespace vesko
