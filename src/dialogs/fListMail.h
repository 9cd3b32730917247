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

/// The window that lists the fetched messages: one row a message, its text below, commands in a
/// menu and by keyboard. What the user marks is marked in the collection at once; read marks stay
/// there, marks for spam last until the keywords are applied the next time, marks for deletion
/// until the window is left.
///
/// The list reads its cells from the messages when they are drawn. The window holds on to the
/// messages that it lists, so a row stays good even after its message has left the collection; such
/// a message can no longer be marked.
class fListMail : public Form {
 public:
  /// All must outlive the window. It shows the settings and the progress window over itself.
  fListMail(Toolkit& toolkit, const Services& services, SharedData& data, fConfig& config_window,
            fCheckMail& check_window);
  ~fListMail() override;

 private:
  /// Applies the keywords and lists the messages; the first one is read then.
  void OnLoad() override;
  /// Takes back the marks for deletion.
  void OnUnload() override;

  void SetUp();
  void SetUpMenu();
  void Arrange();
  void AddColumns();

  /// Marks every message by the keywords, which undoes what the user has marked.
  void ApplySpamFilter();
  /// Lists the collection anew, in its order or sorted as before, and clicks the first row.
  void FillList();
  /// Counts into the caption, and whether there is spam to delete.
  void UpdateStatus();
  /// All three; a step that fails does not keep the others from happening.
  void RefreshAll();
  /// Columns count from 1. Each click turns the direction, whichever column it is on.
  void SortByColumn(ListView& list, int column);

  /// The row's message as the collection holds it, or null.
  colMails::Message MessageOf(int row) const;
  /// Shows the message's text and marks it as read.
  void ItemClicked(int row);
  /// Commands by Ctrl and a letter. Returns whether the key was one.
  bool KeyDown(int key_code, int modifiers);
  /// Shows the menu where the right button went down on a row.
  void MouseDown(int buttons, int row);

  /// `index` is a position in the menu.
  void RunMenuCommand(int index);
  /// Sets a flag of the messages in the selected rows.
  void MarkSelected(bool cMessage::*flag, bool value);

  /// Both show another window over this one and list the messages anew after it.
  void ConfigSpam();
  void DeleteSpam();
  /// Starts the user's mail program; what fails is ignored.
  void OpenEmailClient();
  /// Whether the configured mail program is a file.
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
