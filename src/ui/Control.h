#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/Text.h"

namespace vesko {

class Form;
struct Layout;

/// The native side of a realised control. Owned by the desktop, which is told by it what the
/// control's owner has changed. Its functions are called on the thread that runs the pump.
class ControlPeer {
 public:
  virtual ~ControlPeer() = default;

  /// The control's state has changed. The desktop may collect changes and show them later, within
  /// some tens of milliseconds of running the pump.
  virtual void StateChanged() = 0;

  /// Shows the state and repaints before it returns.
  virtual void Refresh() = 0;

  /// Gives the control the keyboard focus; in a text box the whole text becomes selected.
  virtual void TakeFocus() = 0;
};

/// A face name and a size in points; size 0 means that no font is set.
struct Font {
  Text name;
  double size = 0;
};

/// One control of a window: plain state, no toolkit. Its owner sets the state; the desktop mirrors
/// it in a native widget and raises the events through the same public members that a test calls
/// (Click, Type, …). Texts are shown as plain text, whoever wrote them.
///
/// An event handler may change any control, unload the window and even destroy it: the control does
/// not touch itself after raising an event. Errors that a handler throws leave the call that raised
/// the event.
class Control {
 public:
  /// Registers the control with its form, which must outlive it. `name` is the control's name in
  /// the program, with its index where it is one of an array: "cmdMail(1)".
  Control(Form& form, std::string name);
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& Name() const { return name_; }

  /// A disabled control ignores the user, an invisible one is not drawn; the program can change
  /// both all the same.
  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled) { Set(enabled_, enabled); }

  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { Set(visible_, visible); }

  /// Shown after the mouse has rested on the control; empty for none. Set before the window is
  /// realised.
  const Text& Tooltip() const { return tooltip_; }
  void SetTooltip(Text tooltip) { Set(tooltip_, std::move(tooltip)); }

  /// What a screen reader calls the control. Where it is empty, the reader takes the caption or
  /// the label in front.
  const Text& AccessibleName() const { return accessible_name_; }
  void SetAccessibleName(Text name) { Set(accessible_name_, std::move(name)); }

  /// For a face that it lacks the desktop takes one that it has.
  const Font& GetFont() const { return font_; }
  void SetFont(Font font) {
    font_ = std::move(font);
    Changed();
  }

  /// See ControlPeer. Neither has an effect while the control is not realised.
  void SetFocus() {
    if (peer_) peer_->TakeFocus();
  }
  void Refresh() {
    if (peer_) peer_->Refresh();
  }

  /// The layouts that stand inside the control, one for each native container: the content of a
  /// frame, the pages of a tab control.
  virtual std::vector<const Layout*> Contents() const { return {}; }

  /// For the desktop, which sets null before the native side goes.
  void SetPeer(ControlPeer* peer) { peer_ = peer; }
  ControlPeer* Peer() const { return peer_; }

 protected:
  /// Tells the native side that there is something to show.
  void Changed() {
    if (peer_) peer_->StateChanged();
  }

  /// True when the value differed and the native side was told.
  template <typename Field, typename Value>
  bool Set(Field& field, Value&& value) {
    if (field == value) return false;
    field = std::forward<Value>(value);
    Changed();
    return true;
  }

 private:
  std::string name_;
  bool enabled_ = true;
  bool visible_ = true;
  Text tooltip_;
  Text accessible_name_;
  Font font_{u"Tahoma", 0};  // the size comes from the desktop when the window is realised
  ControlPeer* peer_ = nullptr;
};

/// Controls of one kind under one name: "cmdMail(0)", "cmdMail(1)", … They live as long as the
/// array and register with the form in the order of their indexes.
template <typename Kind, size_t Count>
class ControlArray {
 public:
  ControlArray(Form& form, const std::string& name)
      : ControlArray(form, name, std::make_index_sequence<Count>()) {}

  /// Precondition: the index is below Count.
  Kind& operator[](size_t index) { return controls_[index]; }
  const Kind& operator[](size_t index) const { return controls_[index]; }

  Kind* begin() { return controls_; }
  Kind* end() { return controls_ + Count; }
  const Kind* begin() const { return controls_; }
  const Kind* end() const { return controls_ + Count; }

 private:
  template <size_t... kIndex>
  ControlArray(Form& form, const std::string& name, std::index_sequence<kIndex...>)
      : controls_{Kind(form, name + "(" + std::to_string(kIndex) + ")")...} {}

  Kind controls_[Count];
};

}  // namespace vesko
