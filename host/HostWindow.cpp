#include "HostWindow.h"

#include <QAction>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

namespace vesko_host {

namespace {
constexpr int kPictureSize = 48;  // logical pixels
constexpr int kLeastWidth = 300;  // so that the caption is not cut

QPushButton* ButtonFor(QAction* action, QWidget* parent) {
  auto* button = new QPushButton(action->text(), parent);
  button->setEnabled(action->isEnabled());
  QObject::connect(button, &QPushButton::clicked, action, &QAction::trigger);
  QObject::connect(action, &QAction::enabledChanged, button, &QWidget::setEnabled);
  return button;
}
}  // namespace

HostWindow::HostWindow(const QMenu& menu, std::function<void()> close)
    : close_(std::move(close)), picture_(new QLabel(this)), status_(new QLabel(this)) {
  setWindowTitle(QStringLiteral("Vesko Mail Check"));
  setMinimumWidth(kLeastWidth);
  status_->setTextFormat(Qt::PlainText);
  auto* top = new QHBoxLayout;
  top->addWidget(picture_);
  top->addWidget(status_, 1);
  auto* column = new QVBoxLayout(this);
  column->addLayout(top);
  for (QAction* action : menu.actions()) {
    if (!action->isSeparator() && !action->isCheckable()) {
      column->addWidget(ButtonFor(action, this));
    }
  }
}

void HostWindow::ShowStatus(const QIcon& icon, const QString& status) {
  setWindowIcon(icon);
  picture_->setPixmap(icon.pixmap(kPictureSize));
  status_->setText(status);
}

void HostWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  close_();
}

}  // namespace vesko_host
