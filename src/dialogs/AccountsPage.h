#pragma once

#include "config/Configuration.h"
#include "platform/Locale.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// The page "Accounts" of the settings window: a list of names, and boxes for the account that is
/// selected in it. Accounts are edited in place: what the boxes hold goes into the configuration
/// when another account is shown, before one is added or deleted, and with Store. The boxes are
/// enabled while an account is selected.
///
/// Passwords are scrambled in the configuration and plain in their box. One that cannot be
/// unscrambled shows as empty.
class AccountsPage {
 public:
  /// The form owns the page; locale and configuration must outlive it.
  AccountsPage(Form& form, const Locale& locale, Configuration& configuration);

  /// What stands on the page. Called once.
  Layout Arrange();

  /// Lists the configuration's accounts and shows the first.
  void Load();

  /// Writes the boxes back into the account that they show. Does nothing where none is shown or the
  /// name is empty; a port that is no number becomes 110.
  void Store();

  /// Forgets the accounts without storing anything.
  void Clear();

 private:
  void SetUp();
  Layout ArrangeBoxes();

  int Selected() const { return lstPop3Account.ListIndex(); }
  void List();
  void EnableBoxes();
  /// Fills the boxes from an account, counted from 0. A save-password flag that is no number leaves
  /// its box as it was.
  void Show(int index);
  void WriteBack();
  void TrimBoxes();

  void Clicked();
  /// Adds an account named after its position, and selects it.
  void New();
  /// Deletes the selected account and selects its neighbour.
  void Delete();

  const Locale& locale_;
  Configuration& configuration_;
  int shown_ = -1;  // line of the account in the boxes, -1 for none

  Label lblAccounts;
  ListBox lstPop3Account;
  ControlArray<CommandButton, 2> cmdPOP3;
  Frame fraAccount;
  ControlArray<Label, 5> lblPop3Account;
  ControlArray<TextBox, 5> txtPop3Account;
  CheckBox chkSavePassword;
  Label lblNote;
};

}  // namespace vesko
