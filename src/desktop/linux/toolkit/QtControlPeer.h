#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/RunTimeError.h"
#include "desktop/common/Mirror.h"
#include "ui/Control.h"

namespace vesko {

/// The events of one window that are being handled at the moment. While there are any, its widgets
/// are on the stack and must stay, even when the window is taken down.
struct EventsUnderWay {
  int count = 0;
  QPointer<QWidget> leaving;  // a window that is to be deleted after the last of them
};

/// What the controls of one window share.
struct PeerContext {
  Mirror& mirror;
  /// Where a popup menu opens instead of at the mouse cursor.
  std::shared_ptr<std::optional<QPoint>> popup_place;
  std::shared_ptr<EventsUnderWay> events;
};

/// Runs the handler of an event. The handler may take down the window: the caller uses nothing of
/// it afterwards without asking whether it is still there. A run-time error ends the handler and is
/// dropped, because it must not pass through the toolkit.
template <typename Handler>
void RunHandler(const PeerContext& context, Handler&& handler) {
  const std::shared_ptr<EventsUnderWay> events = context.events;
  ++events->count;
  IgnoreErrors(std::forward<Handler>(handler));
  if (--events->count == 0 && events->leaving) events->leaving->deleteLater();
}

/// The native side of one control, whatever its kind.
class QtControlPeer : public ControlPeer, public Mirrored {
 public:
  /// Takes over the widget until a window adopts it; it must outlive the peer. The control must
  /// outlive the peer.
  QtControlPeer(Control& control, QWidget* widget, const PeerContext& context);
  ~QtControlPeer() override;

  // What the control asks of its native side.
  void StateChanged() final { MarkChanged(); }
  void Refresh() final;
  void TakeFocus() override;

  /// Belongs to the window, and is null never.
  QWidget* GetWidget() const { return widget_; }
  const Control& GetControl() const { return control_; }
  /// Whether the Tab key stops here.
  bool TakesFocus() const { return (widget_->focusPolicy() & Qt::TabFocus) != 0; }

  /// The widgets that the control's contents are laid out in, in the order of Control::Contents.
  virtual std::vector<QWidget*> Containers() const { return {}; }

  /// True where the label in front names the control, as it has no caption of its own.
  virtual bool WantsLabel() const { return false; }
  /// The accessible name where the control has none of its own.
  void SetLabel(const QString& label) { label_ = label; }

  /// `target` is the control that the mnemonic leads to. Does nothing unless this is a label.
  virtual void LeadTo(QtControlPeer& /*target*/) {}

 protected:
  /// Shows what all controls have: font, enabled, visible, tooltip, accessible name.
  void ShowState() final;
  /// Shows the part of the state that only this kind of control has.
  virtual void ShowOwnState() = 0;

  /// Connections made with it end with the peer, and a QPointer to it tells whether the peer is
  /// still there.
  QObject* Lifetime() { return &lifetime_; }
  const PeerContext& Context() const { return context_; }

 private:
  /// Gives the widget the control's font where it has one, else the desktop's.
  void ShowFont();

  Control& control_;
  QWidget* widget_;
  PeerContext context_;
  QString label_;
  bool visible_ = true;
  std::optional<Font> font_;
  QObject lifetime_;
};

using PeerPtr = std::unique_ptr<QtControlPeer>;

/// The native side of a control of one kind, in a widget of one class. Base of the peers that the
/// kinds of controls have.
template <typename ControlKind, typename Widget>
class QtPeerOf : public QtControlPeer {
 public:
  using Kind = ControlKind;

  QtPeerOf(Kind& control, const PeerContext& context)
      : QtControlPeer(control, new Widget, context), control_(control) {}

 protected:
  /// The widget as what it is.
  Widget* Native() const { return static_cast<Widget*>(GetWidget()); }

  Kind& control_;
};

/// The desktop's own font size in points.
double DesktopFontSize();

}  // namespace vesko
