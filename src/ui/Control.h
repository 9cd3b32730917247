#pragma once

#include <string>
#include <utility>

#include "base/Text.h"

namespace vesko {

class ControlVisitor;

/// The native side of a realised control. Owned by the desktop; tells it what the control's owner
/// changed.
class ControlPeer {
 public:
  virtual ~ControlPeer() = default;

  /// The control's state has changed. The desktop may collect changes and show them later, within
  /// some tens of milliseconds of running the pump.
  virtual void StateChanged() = 0;

  /// Shows the state and repaints at once.
  virtual void Refresh() = 0;

  /// Gives the control the keyboard focus; in a text box the whole text becomes selected.
  virtual void TakeFocus() = 0;
};

/// A face name and a size in points; size 0 means that no font is set.
struct Font {
  Text name;
  double size = 0;
};

/// One control of a window: plain state, no toolkit. Whoever owns it sets the state; the desktop
/// mirrors it in a native widget and raises the events through the same public members that a test
/// calls (Click, Type, …).
class Control {
 public:
  /// `name` is the control's name in the program, with its index in an array: "cmdMail(1)".
  explicit Control(std::string name) : name_(std::move(name)) {}
  virtual ~Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  const std::string& Name() const { return name_; }

  bool Enabled() const { return enabled_; }
  void SetEnabled(bool enabled) { Set(enabled_, enabled); }

  bool Visible() const { return visible_; }
  void SetVisible(bool visible) { Set(visible_, visible); }

  const Text& Tooltip() const { return tooltip_; }
  void SetTooltip(Text tooltip) { Set(tooltip_, std::move(tooltip)); }

  /// What a screen reader says; where it is empty, the caption or the label in front.
  const Text& AccessibleName() const { return accessible_name_; }
  void SetAccessibleName(Text name) { Set(accessible_name_, std::move(name)); }

  const Font& GetFont() const { return font_; }
  void SetFont(Font font) {
    font_ = std::move(font);
    Changed();
  }

  /// No effect while the control is not realised.
  void SetFocus() {
    if (peer_) peer_->TakeFocus();
  }
  void Refresh() {
    if (peer_) peer_->Refresh();
  }

  virtual void Accept(ControlVisitor& visitor) = 0;

  /// For the desktop: null when the native side goes.
  void SetPeer(ControlPeer* peer) { peer_ = peer; }
  ControlPeer* Peer() const { return peer_; }

 protected:
  void Changed() {
    if (peer_) peer_->StateChanged();
  }

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

}  // namespace vesko
