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

inline constexpr wchar_t kFormClass[] = L"VeskoForm";

/// The windows that are shown at the moment, the one on top last.
struct WinWindows {
  EventSources& sources;
  WinContext context = {};
  std::vector<WinForm*> shown = {};

  /// Native window that a new one belongs over: ours on top, else the host's active one.
  HWND Top() const;
};

/// The native side of a form: a window with its controls.
class WinForm : public FormPeer {
 public:
  /// What the keyboard does in a window before the system's own dialog keys. True when the message
  /// was used up.
  virtual bool TranslateKey(const MSG& message) = 0;
  virtual HWND Window() const = 0;
  virtual bool IsShown() const = 0;
  /// The session ends or the host's message loop was told to quit.
  virtual void CloseForm() = 0;
  virtual const Form& GetForm() const = 0;
};

std::unique_ptr<WinForm> MakeWinForm(Form& form, WinWindows& windows);

}  // namespace vesko
