#pragma once

#include "base/Text.h"
#include "maillist/SharedData.h"
#include "platform/Services.h"
#include "pop3/CheckRun.h"
#include "pop3/ProgressView.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// The progress window of a check. Prepare, ShowModal, then ask NewMail: the whole run happens
/// while it is shown, and it closes itself at the end. Next and Cancel act on the run while it
/// waits; closing the window by its frame ends the run as well.
///
/// Texts from servers are shown as they are, in labels and boxes of plain text; the run sees to it
/// that no password is among them. A progress value out of range is ignored.
class fCheckMail : public Form, private ProgressView {
 public:
  /// All must outlive the window. The window takes over the events of the services' socket.
  fCheckMail(Toolkit& toolkit, const Services& services, SharedData& data);
  ~fCheckMail() override;

  /// The next showing runs a check.
  void Prepare() { run_.Prepare(); }

  /// The last run was stopped by the user.
  bool Cancelled() const { return run_.Cancelled(); }

  /// At least one message in the collection is unread, whichever check fetched it.
  bool NewMail() const { return run_.NewMail(); }

 private:
  /// Empties the labels.
  void OnLoad() override;
  /// Runs the whole check before it returns.
  void OnActivate() override;
  void OnUnload() override { run_.WindowUnloaded(); }

  // What the run has to show and to ask; see ProgressView.
  void ShowCaption(const Text& caption) override { SetCaption(caption); }
  void ShowProgress(const Text& text) override { lblProgress.SetCaption(text); }
  void ShowTime(const Text& text) override;
  void ShowCommand(const Text& text) override { lblCmd.SetCaption(text); }
  void SetProgressMaximum(int32_t maximum) override;
  void SetProgressValue(int32_t value) override;
  void EnableNext(bool enabled) override { cmdNext.SetEnabled(enabled); }
  void ShowError(const Text& text, const Text& title) override;
  /// Closing the box without an answer counts as neither button.
  int AskRetry(const Text& question, const Text& title) override;
  /// False when the user cancels; the credentials are unchanged then.
  bool AskCredentials(Credentials& credentials) override;
  void UnloadWindow() override { Unload(); }

  // What the controls say and do, and where they stand.
  void SetUp();
  void Arrange();

  const Text& font_name_;

  Label lblProgress{*this, "lblProgress"};
  Label lblTime{*this, "lblTime"};
  Label lblCmd{*this, "lblCmd"};
  ProgressBar prgBar1{*this, "prgBar1"};
  CommandButton cmdNext{*this, "cmdNext"};
  CommandButton cmdCancel{*this, "cmdCancel"};

  CheckRun run_;  // last: it speaks to the controls above
};

}  // namespace vesko
