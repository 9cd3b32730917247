#include "desktop/linux/toolkit/QtControlPeer.h"

#include <QApplication>
#include <QFont>
#include <QFontDatabase>
#include <QFontInfo>
#include <QTextDocument>

#include "desktop/common/ShownText.h"
#include "desktop/linux/toolkit/QtText.h"

namespace vesko {
namespace {

QFont NativeFont(const Font& font) {
  QFont native = QApplication::font();
  const QString family = ToQString(font.name);
  if (QFontDatabase::hasFamily(family)) native.setFamilies({family});
  if (font.size > 0) native.setPointSizeF(font.size);
  return native;
}

QString PlainTooltip(TextView text) {
  const QString tooltip = ToQString(OneLine(text));
  return Qt::mightBeRichText(tooltip) ? "<qt>" + tooltip.toHtmlEscaped() + "</qt>" : tooltip;
}

}  // namespace

double DesktopFontSize() { return QFontInfo(QApplication::font()).pointSizeF(); }

QtControlPeer::QtControlPeer(Control& control, QWidget* widget, const PeerContext& context)
    : Mirrored(context.mirror), control_(control), widget_(widget), context_(context) {
  widget_->setObjectName(QString::fromStdString(control.Name()));
  control_.SetPeer(this);
  MarkChanged();
}

QtControlPeer::~QtControlPeer() {
  if (control_.Peer() == this) control_.SetPeer(nullptr);
}

void QtControlPeer::Refresh() {
  Synchronise();
  widget_->repaint();
}

void QtControlPeer::TakeFocus() {
  // The control may have been enabled, or its page turned to, just now.
  GetMirror().SynchroniseAll();
  widget_->setFocus(Qt::OtherFocusReason);
}

void QtControlPeer::ShowState() {
  ShowFont();
  widget_->setEnabled(control_.Enabled());
  if (visible_ != control_.Visible()) {
    visible_ = control_.Visible();
    widget_->setVisible(visible_);
  }
  widget_->setToolTip(PlainTooltip(control_.Tooltip()));
  const QString name = ToQString(OneLine(control_.AccessibleName()));
  widget_->setAccessibleName(name.isEmpty() ? label_ : name);
  ShowOwnState();
}

void QtControlPeer::ShowFont() {
  const Font& font = control_.GetFont();
  if (font_ && font_->name == font.name && font_->size == font.size) return;
  font_ = font;
  widget_->setFont(NativeFont(font));
}

}  // namespace vesko
