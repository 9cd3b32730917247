#pragma once

#include <vector>

#include "base/Text.h"
#include "dialogs/fCheckMail.h"
#include "dialogs/fConfig.h"
#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// The window that lists the fetched messages. What the user marks is marked in the collection.
class fListMail : public Form {
 public:
  /// All must outlive the window.
  fListMail(Toolkit& toolkit, const Services& services, SharedData& data, fConfig& config_window,
            fCheckMail& check_window);
  ~fListMail() override;

 private:
  void OnLoad() override;
  void OnUnload() override;

  void SetUp();
  void SetUpMenu();
  void Arrange();
  void AddColumns();

  void ApplySpamFilter();
  void FillList();
  void UpdateStatus();
  void RefreshAll();
  void SortByColumn(ListView& list, int column);

  colMails::Message MessageOf(int row) const;
  void ItemClicked(int row);
  bool KeyDown(int key_code, int modifiers);
  void MouseDown(int buttons, int row);

  void RunMenuCommand(int index);
  void MarkSelected(bool cMessage::*flag, bool value);

  void ConfigSpam();
  void DeleteSpam();
  void OpenEmailClient();
  bool EmailClientExists() const;

  const Locale& locale_;
  const Configuration& configuration_;
  colMails& mails_;
  Shell& shell_;
  fConfig& config_window_;
  fCheckMail& check_window_;
  const Text& font_name_;

  std::vector<colMails::Message> listed_;  // the items of LV1

  ListView LV1{*this, "LV1"};
  TextBox txtBody{*this, "txtBody"};
  ControlArray<CommandButton, 4> cmdMail{*this, "cmdMail"};
  PopupMenu mnuMail;  // its items are mnuMailSub
};

}  // namespace vesko
