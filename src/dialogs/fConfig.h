#pragma once

#include <functional>

#include "base/Text.h"
#include "config/mRegistry.h"
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
  /// The parts of one keyword list's editor.
  struct KeywordEditor {
    ListBox& list;
    CommandButton (&buttons)[3];
    Text prompt;
  };

  void OnLoad() override;
  void OnUnload() override;
  void OnClose() override { Cancel(); }

  void SetUp();
  void SetUpAccounts();
  void SetUpKeywords(KeywordEditor& editor);
  void SetUpOptions();
  Layout AccountsPage();
  Layout AccountFields();
  Layout KeywordColumn(Label& label, KeywordEditor& editor);
  Layout OptionsPage();
  void AddAll();

  void FillOptions();
  void FillAccounts();

  int SelectedAccount() const { return lstPop3Account.ListIndex(); }
  void EnableAccountBoxes();
  void AccountClicked();
  void ShowAccount(int index);
  void StoreShownAccount();
  void TrimAccountBoxes();
  void NewAccount();
  void DeleteAccount();

  void AddKeyword(KeywordEditor& editor);
  void RenameKeyword(KeywordEditor& editor);
  static void DeleteKeyword(KeywordEditor& editor);

  void ManualCheckClicked();
  void PickFile(TextBox& box, const Text& title, const Text& filter, const Text& extension);

  void Confirm();
  bool TakeOptions();
  bool ReadNumber(TextBox& box, const Label& label, int32_t& number);
  void Cancel();
  void Help();

  const Locale& locale_;
  Configuration& configuration_;
  mRegistry& store_;
  PlaySound play_sound_;
  const Text& font_name_;
  bool canceled_ = false;
  int shown_account_ = -1;  // line of the account in the boxes, -1 for none

  TabControl SSTab1{"SSTab1"};

  Label lblAccounts{"lblAccounts"};
  ListBox lstPop3Account{"lstPop3Account"};
  CommandButton cmdPOP3[2]{CommandButton{"cmdPOP3(0)"}, CommandButton{"cmdPOP3(1)"}};
  Frame fraAccount{"fraAccount"};
  Label lblPop3Account[5]{Label{"lblPop3Account(0)"}, Label{"lblPop3Account(1)"},
                          Label{"lblPop3Account(2)"}, Label{"lblPop3Account(3)"},
                          Label{"lblPop3Account(4)"}};
  TextBox txtPop3Account[5]{TextBox{"txtPop3Account(0)"}, TextBox{"txtPop3Account(1)"},
                            TextBox{"txtPop3Account(2)"}, TextBox{"txtPop3Account(3)"},
                            TextBox{"txtPop3Account(4)"}};
  CheckBox chkSavePassword{"chkSavePassword"};
  Label lblNote{"lblNote"};

  Label lblSpamSender{"lblSpamSender"};
  ListBox lstSpamSender{"lstSpamSender"};
  CommandButton cmdSpamSender[3]{CommandButton{"cmdSpamSender(0)"},
                                 CommandButton{"cmdSpamSender(1)"},
                                 CommandButton{"cmdSpamSender(2)"}};
  Label lblSpamSubject{"lblSpamSubject"};
  ListBox lstSpamSubject{"lstSpamSubject"};
  CommandButton cmdSpamSubject[3]{CommandButton{"cmdSpamSubject(0)"},
                                  CommandButton{"cmdSpamSubject(1)"},
                                  CommandButton{"cmdSpamSubject(2)"}};
  KeywordEditor senders_;
  KeywordEditor subjects_;

  Label lblPOP3DownLines{"lblPOP3DownLines"};
  TextBox txtPOP3DownLines{"txtPOP3DownLines"};
  Label lblPOP3CheckTime{"lblPOP3CheckTime"};
  TextBox txtPOP3CheckTime{"txtPOP3CheckTime"};
  Label lblPOP3WaitTime{"lblPOP3WaitTime"};
  TextBox txtPOP3WaitTime{"txtPOP3WaitTime"};
  CheckBox chkPop3ManualCheck{"chkPop3ManualCheck"};
  Label lblPOP3SoundFile{"lblPOP3SoundFile"};
  TextBox txtPOP3SoundFile{"txtPOP3SoundFile"};
  CommandButton cmdPop3Sound[2]{CommandButton{"cmdPop3Sound(0)"}, CommandButton{"cmdPop3Sound(1)"}};
  Label lblDefEmailClient{"lblDefEmailClient"};
  TextBox txtDefEmailClient{"txtDefEmailClient"};
  CommandButton cmdDefEmailClient{"cmdDefEmailClient"};

  CommandButton cmdOK{"cmdOK"};
  CommandButton cmdCancel{"cmdCancel"};
  CommandButton cmdHelp{"cmdHelp"};
};

}  // namespace vesko
