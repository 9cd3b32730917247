#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QTextDocumentFragment>
#include <QTimer>
#include <QTreeView>

#include "desktop/ToolkitFixture.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/toolkit/QtControlPeer.h"

namespace vesko {
namespace {

QWidget* WidgetOf(const Control& control) {
  return dynamic_cast<QtControlPeer&>(*control.Peer()).GetWidget();
}

QString TextOf(const QWidget* widget) {
  for (const char* name : {"text", "plainText", "title"}) {
    if (const QVariant text = widget->property(name); text.isValid()) return text.toString();
  }
  return {};
}

Rect RectOf(const QPoint& place, const QSize& size) {
  return {place.x(), place.y(), size.width(), size.height()};
}

}  // namespace

std::unique_ptr<Toolkit> MakeTestToolkit() { return MakeQtToolkit(); }

Shown LookAt(const Control& control) {
  const QWidget* const widget = WidgetOf(control);
  const QString tooltip = QTextDocumentFragment::fromHtml(widget->toolTip()).toPlainText();
  return {.place = RectOf(widget->mapTo(widget->window(), QPoint()), widget->size()),
          .visible = widget->isVisible(),
          .enabled = widget->isEnabled(),
          .text = TextOf(widget).toStdU16String(),
          .tooltip = tooltip.toStdU16String(),
          .font = {widget->font().family().toStdU16String(), widget->font().pointSizeF()}};
}

std::vector<int> ColumnWidths(const ListView& list) {
  const QHeaderView* const header = qobject_cast<QTreeView*>(WidgetOf(list))->header();
  std::vector<int> widths;
  for (int i = 0; i < header->count(); ++i) widths.push_back(header->sectionSize(i));
  return widths;
}

void PasteBeforeLast(const TextBox& box, const Text& text) {
  auto* const edit = qobject_cast<QLineEdit*>(WidgetOf(box));
  QApplication::clipboard()->setText(QString::fromStdU16String(text));
  edit->setCursorPosition(static_cast<int>(edit->text().size()) - 1);
  edit->paste();
}

bool WindowIsShown(const Control& control) { return WidgetOf(control)->window()->isVisible(); }

Text CaptionOfWindow(const Control& control) {
  return WidgetOf(control)->window()->windowTitle().toStdU16String();
}

Rect BoundsOfWindow(const Control& control) {
  const QWidget* const window = WidgetOf(control)->window();
  return RectOf(window->pos(), window->size());
}

void MoveWindowOf(const Control& control, const Rect& bounds) {
  QWidget* const window = WidgetOf(control)->window();
  window->move(bounds.left, bounds.top);
  window->resize(bounds.width, bounds.height);
}

Text SomeFontFace() {
  for (const QString& family : QFontDatabase::families()) {
    if (family != QApplication::font().family() && !family.contains(u'[')) {
      return family.toStdU16String();
    }
  }
  return QApplication::font().family().toStdU16String();
}

void Soon(std::function<void()> step) { QTimer::singleShot(0, qApp, std::move(step)); }

void CloseBox() { qobject_cast<QMessageBox*>(QApplication::activeModalWidget())->accept(); }

int NativeWindows() {
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  return static_cast<int>(QApplication::topLevelWidgets().size());
}

}  // namespace vesko
