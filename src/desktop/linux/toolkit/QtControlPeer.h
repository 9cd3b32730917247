#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <memory>
#include <optional>
#include <utility>

#include "base/RunTimeError.h"
#include "desktop/common/Mirror.h"
#include "ui/Control.h"

namespace vesko {

/// The events of one window that are being handled at the moment. While there are any, its widgets
/// stand on the stack and must stay, even when the window is taken down.
struct EventsUnderWay {
  int count = 0;
  QPointer<QWidget> leaving;
};

/// What the controls of one window share.
struct PeerContext {
  Mirror& mirror;
  /// Where a popup menu opens instead of at the mouse cursor.
  std::shared_ptr<std::optional<QPoint>> popup_place;
  std::shared_ptr<EventsUnderWay> events;
};

/// Hands an event to its handler. The handler may take down the window: nothing of it may be used
/// afterwards without asking. An error ends the event and no more, as it must not fly through the
/// toolkit.
template <typename Event>
void Raise(const PeerContext& context, Event&& event) {
  const std::shared_ptr<EventsUnderWay> events = context.events;
  ++events->count;
  IgnoreErrors(std::forward<Event>(event));
  if (--events->count == 0 && events->leaving) events->leaving->deleteLater();
}

/// The native side of one control, whatever its kind.
class QtControlPeer : public ControlPeer, public Mirrored {
 public:
  /// The widget belongs to its window and outlives the peer.
  QtControlPeer(Control& control, QWidget* widget, const PeerContext& context);
  ~QtControlPeer() override;

  void StateChanged() final { MarkChanged(); }
  void Refresh() final;
  void TakeFocus() override;

  QWidget* Widget() const { return widget_; }
  const Control& GetControl() const { return control_; }
  bool TakesFocus() const { return (widget_->focusPolicy() & Qt::TabFocus) != 0; }

  /// True where a label in front names the control, as it has no caption of its own.
  virtual bool WantsLabel() const { return false; }
  void SetLabel(const QString& label) { label_ = label; }

  /// The label's mnemonic leads there. Only labels do something about it.
  virtual void LeadTo(QtControlPeer&) {}

 protected:
  void ShowState() final;
  /// Shows what the kinds of controls do not have in common.
  virtual void ShowOwnState() = 0;

  /// Connections made with it end with the peer; it tells whether the peer is still there.
  QObject* Lifetime() { return &lifetime_; }
  const PeerContext& Context() const { return context_; }

 private:
  void ShowFont();

  Control& control_;
  QWidget* widget_;
  PeerContext context_;
  QString label_;
  bool visible_ = true;
  std::optional<Font> font_;
  QObject lifetime_;
};

/// The desktop's own font size in points.
double DesktopFontSize();

}  // namespace vesko
