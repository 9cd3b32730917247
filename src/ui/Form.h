#pragma once

#include <memory>
#include <string>
#include <vector>

#include "base/Text.h"
#include "ui/Control.h"
#include "ui/Layout.h"
#include "ui/Toolkit.h"

namespace vesko {

class CommandButton;

/// A window without a toolkit. Its controls are its members, which register with it; the desktop
/// realises it while it is shown. All geometry is in logical pixels (96 to the inch) of the screen.
///
/// The life of one showing: load, show, activate, modal loop, unload. A window unloaded from within
/// its activation or an event is hidden at once and taken down when control is back in ShowModal.
/// It may be shown again afterwards, and its controls keep their state in between.
class Form {
 public:
  /// The toolkit must outlive the form.
  Form(std::string name, Toolkit& toolkit);
  virtual ~Form();
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& Name() const { return name_; }

  /// Shown in the title bar, as one line of plain text.
  const Text& Caption() const { return caption_; }
  void SetCaption(Text caption);

  /// Place and size of the whole window, its frame included.
  int Left() const { return bounds_.left; }
  int Top() const { return bounds_.top; }
  int Width() const { return bounds_.width; }
  int Height() const { return bounds_.height; }
  const Rect& Bounds() const { return bounds_; }
  /// A window that is shown follows with the next events. When it is shown it grows to what its
  /// content needs, as far as the screen has room.
  void Move(int left, int top);
  void Resize(int width, int height);

  /// Whether the user can resize the window. Fixed before the window is realised.
  bool Resizable() const { return resizable_; }

  /// All controls in the order in which they were made.
  const std::vector<Control*>& Controls() const { return controls_; }
  const Layout& GetLayout() const { return layout_; }

  /// Button that Enter presses when no button has the focus, and the one that Escape presses.
  /// Either may be null: Enter does nothing then, Escape closes the window.
  CommandButton* DefaultButton() const { return default_button_; }
  CommandButton* CancelButton() const { return cancel_button_; }

  /// The control at the first place of the tab order; where it is null, the first of the layout.
  Control* FirstInTabOrder() const { return first_in_tab_order_; }
  void SetFirstInTabOrder(Control& control);

  /// True from the beginning of OnLoad to the end of OnUnload.
  bool IsLoaded() const { return loaded_; }

  /// Shows the window, over the one that is shown modally already where there is one, and returns
  /// when it is unloaded or destroyed. No effect while it is shown. What OnLoad or OnActivate
  /// throws passes through; the window is taken down then and may be shown again.
  void ShowModal();

  /// Ends the showing. No effect while the window is not loaded.
  void Unload();

  /// For the desktop: the user closes the window by its frame.
  void Close() {
    if (loaded_) OnClose();
  }
  /// For the desktop: the user moved or resized the window.
  void TakeBounds(const Rect& bounds);

 protected:
  /// For the constructor of a window: the layout holds every control once, and neither it nor the
  /// buttons change while the window is realised.
  void SetLayout(Layout layout) { layout_ = std::move(layout); }
  void SetDefaultButton(CommandButton& button) { default_button_ = &button; }
  void SetCancelButton(CommandButton& button) { cancel_button_ = &button; }
  void SetResizable(bool resizable) { resizable_ = resizable; }
  Toolkit& GetToolkit() const { return toolkit_; }

  /// The native window exists and is hidden still.
  virtual void OnLoad() {}
  /// The native window has just been shown.
  virtual void OnActivate() {}
  /// Runs once for each showing, while the window is still loaded.
  virtual void OnUnload() {}
  /// The user closes the window by its frame.
  virtual void OnClose() { Unload(); }

  /// Ends a showing and lets go of the native side. First thing in the destructor of every window,
  /// while its controls still live: a form may be destroyed while it is shown.
  void TakeDown();

 private:
  friend class Control;
  class Showing;

  void StateChanged();

  std::string name_;
  Toolkit& toolkit_;
  Text caption_;
  Rect bounds_{0, 0, 320, 240};
  bool resizable_ = false;
  bool loaded_ = false;
  bool unloading_ = false;
  Showing* showing_ = nullptr;
  std::vector<Control*> controls_;  // they register themselves
  Layout layout_;
  CommandButton* default_button_ = nullptr;
  CommandButton* cancel_button_ = nullptr;
  Control* first_in_tab_order_ = nullptr;
  std::unique_ptr<FormPeer> peer_;
};

}  // namespace vesko
