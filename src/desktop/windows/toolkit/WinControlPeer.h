#pragma once

#include <windows.h>
// After windows.h, whose types it uses.
#include <commctrl.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desktop/common/Mirror.h"
#include "ui/Control.h"
#include "ui/Controls.h"

namespace vesko {

/// What all native controls of the component share. Used on the thread of the message loop only.
struct WinContext {
  Mirror mirror;
  HINSTANCE instance = nullptr;  // the module that holds this code
  int dots_per_inch = 96;
  std::optional<POINT> popup_place;  // screen; where a menu asked for by keyboard appears

  /// Logical pixels to those of the screen.
  int Scaled(int logical) const { return MulDiv(logical, dots_per_inch, 96); }
};

/// Registers a window class of this module unless it is registered. The toolkit unregisters it at
/// its end, since a host may unload the library and load it again to another place.
void RegisterWindowClass(const wchar_t* name, HINSTANCE module, WNDPROC procedure);

/// The native side of one control: a child window, its share of the layout and its messages. The
/// control must outlive it; it destroys its window when it goes.
class WinControlPeer : public ControlPeer, protected Mirrored {
 public:
  WinControlPeer(Control& control, WinContext& context)
      : Mirrored(context.mirror), context_(context), base_(control) {}
  ~WinControlPeer() override;

  Control& GetControl() const { return base_; }
  HWND Window() const { return window_; }

  /// Least size in device pixels; the height may depend on the width that is there.
  virtual int LeastWidth() const = 0;
  virtual int HeightFor(int width) const = 0;
  /// Whether the control makes use of room beyond its least size.
  virtual bool GrowsSideways() const { return false; }
  virtual bool GrowsDown() const { return false; }

  /// The windows that are the parents of the control's contents, in the order of
  /// Control::Contents.
  virtual std::vector<HWND> Containers() const { return {}; }

  /// Whether the Tab key stops here.
  virtual bool TakesFocus() const { return true; }
  /// Moves the window; containers leave room for a frame.
  virtual void Place(const RECT& place);

  /// Messages that the control sent to its parent; true when `result` is the answer.
  virtual bool Command(WORD /*code*/) { return false; }
  virtual bool Notify(NMHDR& /*header*/, LRESULT& /*result*/) { return false; }
  /// A key that was pressed in the control; true when it was used up.
  virtual bool KeyPressed(WPARAM /*key*/) { return false; }
  /// A key that was pressed anywhere in the window; true when it was used up.
  virtual bool KeyPressedInWindow(WPARAM /*key*/) { return false; }

  // ControlPeer
  void StateChanged() override { MarkChanged(); }
  void Refresh() override;
  void TakeFocus() override;

 protected:
  /// Makes the child window and shows the control's font and, with the next changes, its state. To
  /// be called once, by the constructors of the kinds.
  void Create(HWND parent, const wchar_t* window_class, DWORD style, DWORD extended_style = 0);
  /// Brings font, enabled state and visibility up to date; overriders call it first.
  void ShowState() override;

  HFONT NativeFont() const { return font_; }
  /// In device pixels and the control's font; "&" marks a mnemonic unless `literal`.
  int LineHeight() const;
  SIZE TextSize(TextView text, bool literal = false) const;

  WinContext& context_;

 private:
  void ShowFont();
  /// The keyboard is dead while a disabled control has the focus.
  void PassFocusOn();

  Control& base_;
  HWND window_ = nullptr;
  HFONT font_ = nullptr;
  Text font_name_;
  double font_size_ = 0;
};

using WinPeerPtr = std::unique_ptr<WinControlPeer>;

/// The native side of a control of one kind. Base of the peers that the kinds of controls have.
template <typename ControlKind>
class WinPeerOf : public WinControlPeer {
 public:
  using Kind = ControlKind;

  WinPeerOf(Kind& control, WinContext& context)
      : WinControlPeer(control, context), control_(control) {}

 protected:
  Kind& control_;
};

/// Shift, Control and Alt as the events report them.
int ModifiersDown();

}  // namespace vesko
