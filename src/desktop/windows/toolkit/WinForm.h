#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "desktop/windows/events/EventSources.h"
#include "desktop/windows/toolkit/WinControlPeer.h"
#include "ui/Form.h"
#include "ui/Toolkit.h"

namespace vesko {

class WinForm;

/// Window class of every form.
inline constexpr wchar_t kFormClass[] = L"VeskoForm";

/// The windows of one toolkit, and what they share. Lives as long as the toolkit.
struct WinWindows {
  EventSources& sources;  // asked as well while the system runs a loop of its own
  WinContext context = {};
  std::vector<WinForm*> shown = {};  // the one on top last; not owned

  /// The native window that a new one belongs over: ours on top, else the host's active one.
  HWND Top() const;
};

/// The native side of a form: a window with its controls. Its owner is the window that was on top
/// when it was made, which is disabled while it is shown.
class WinForm : public FormPeer {
 public:
  /// What the keyboard does in a window before the system's own dialog keys. True when the message
  /// was used up.
  virtual bool TranslateKey(const MSG& message) = 0;
  virtual HWND Window() const = 0;
  virtual bool IsShown() const = 0;
  /// Closes the form as its frame does: the host's message loop was told to quit.
  virtual void CloseForm() = 0;
  virtual const Form& GetForm() const = 0;
};

/// Builds the window of a form with all its controls, hidden still. Controls without a font size
/// get that of the system's message font. Form and `windows` must outlive the result.
std::unique_ptr<WinForm> MakeWinForm(Form& form, WinWindows& windows);

}  // namespace vesko
