#pragma once

#include <memory>

#include "base/Text.h"
#include "platform/Pump.h"

namespace vesko {

/// Title of boxes that carry none of their own.
inline constexpr TextView kApplicationTitle = u"VeskoEx";

class Control;
class Form;
struct PopupMenu;

/// In logical pixels (96 to the inch) of the screen, from its upper left corner.
struct Rect {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

/// What a message box is about: information, or something that went wrong.
enum class MessageIcon { kInformation, kExclamation };

/// The native side of a window that is shown.
class FormPeer {
 public:
  virtual ~FormPeer() = default;

  /// Makes the window no smaller than its content needs (through Form::Resize), keeping its centre.
  virtual void FitToContent() = 0;

  /// Shows the window with the bounds of its form, and gives it the focus.
  virtual void Show() = 0;

  /// Hides the window at once; RunModal for it returns.
  virtual void Hide() = 0;

  /// Caption, bounds or tab order have changed.
  virtual void StateChanged() = 0;
};

/// What a desktop does for the windows of the core. One thread, the one that runs the pump.
class Toolkit {
 public:
  virtual ~Toolkit() = default;

  virtual Pump& GetPump() = 0;

  /// Builds native widgets for every control of the form's layout and connects both ways, hidden
  /// still. Controls get the desktop's font size where they have none. The window belongs over the
  /// one that is shown modally at the moment, where there is one.
  virtual std::unique_ptr<FormPeer> Realise(Form& form) = 0;

  /// Runs events, with every other window of the component blocked, until the form is not loaded.
  virtual void RunModal(Form& form) = 0;

  /// A modal box with plain text and an OK button; returns when it is closed. An empty title is the
  /// application's.
  virtual void ShowMessage(const Text& text, const Text& title, MessageIcon icon) = 0;

  /// Lets the user pick an existing file. `filter` is "description|pattern|description|pattern".
  /// Empty text when the user picks none.
  virtual Text OpenFile(const Text& title, const Text& filter, const Text& default_extension) = 0;

  /// Pops the menu up at the mouse cursor and returns when it is closed; a choice raises its
  /// on_click first.
  virtual void ShowPopup(Form& form, PopupMenu& menu) = 0;

  /// The part of the screen that windows may cover.
  virtual Rect Screen() const = 0;

  /// Marks a control's rectangle for repainting without erasing it first.
  virtual void Invalidate(Form& form, Control& control) = 0;
};

}  // namespace vesko
