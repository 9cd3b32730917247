#include "desktop/linux/toolkit/QtForm.h"

#include <QAbstractEventDispatcher>
#include <QCloseEvent>
#include <QDialog>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <algorithm>

#include "desktop/common/ShownText.h"
#include "desktop/linux/toolkit/QtLayout.h"
#include "desktop/linux/toolkit/QtText.h"
#include "ui/Controls.h"

namespace vesko {
namespace {

class QtForm;

/// The native window. It leaves every decision to its form: a request to close or to escape does
/// nothing by itself, and the form hides the window when it is unloaded.
class Window : public QDialog {
 public:
  Window(QtForm& form, QWidget* parent) : QDialog(parent), form_(&form) {}

  /// The native side of the form goes; the window may live on until its events are over.
  void Detach() { form_ = nullptr; }

  // The dialog's own way out, taken on Escape.
  void reject() override;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QtForm* form_;
};

/// The contents of a window. They scroll when they get less than their least height, not already
/// when they get less than their preferred one.
class Content : public QWidget {
 public:
  int LeastWidth() const { return layout()->totalMinimumSize().width(); }
  int heightForWidth(int width) const override {
    return layout()->hasHeightForWidth() ? layout()->totalMinimumHeightForWidth(width)
                                         : layout()->totalMinimumSize().height();
  }
};

class QtForm : public FormPeer, private Mirrored {
 public:
  QtForm(Form& form, Windows& windows)
      : Mirrored(windows.mirror),
        form_(form),
        windows_(windows),
        context_{windows.mirror, windows.popup_place, std::make_shared<EventsUnderWay>()},
        window_(new Window(*this, windows.Top())) {
    window_->setObjectName(QString::fromStdString(form.Name()));
    window_->setWindowModality(Qt::WindowModal);
    window_->setAttribute(Qt::WA_QuitOnClose, false);  // the host decides when the program ends
    window_->setWindowFlag(Qt::WindowMaximizeButtonHint, form.Resizable());
    GiveFontSizes();
    BuildContent();
    SetUpButtons();
  }

  ~QtForm() override {
    Leave();
    window_->Detach();
    peers_.clear();
    window_->hide();
    LetGoOfChildren();
    context_.events->leaving = window_;
    if (context_.events->count == 0) delete window_;
  }

  void FitToContent() override {
    GetMirror().SynchroniseAll();
    ForgetMeasures();
    const QSize most = LargestSize();
    const int least_width = content_->LeastWidth();
    const int width = std::min(std::max(form_.Width(), least_width), most.width());
    const int least_height = content_->heightForWidth(width);
    const int height = std::min(std::max(form_.Height(), least_height), most.height());
    window_->setMinimumSize(std::min(least_width, width), std::min(least_height, height));
    AllowScrolling(least_width > width || least_height > height);
    if (width == form_.Width() && height == form_.Height()) return;
    const QRect screen = AvailableScreen(windows_);
    form_.Move(std::max(screen.left(), form_.Left() - (width - form_.Width()) / 2),
               std::max(screen.top(), form_.Top() - (height - form_.Height()) / 2));
    form_.Resize(width, height);
  }

  void Show() override {
    GetMirror().SynchroniseAll();
    Synchronise();
    if (!window_->focusWidget()) FocusFirst();
    if (!*open_) windows_.shown.push_back({&form_, window_, open_});
    *open_ = true;
    window_->show();
    window_->raise();
    window_->activateWindow();
  }

  void Hide() override {
    Leave();
    window_->hide();
    // Wakes the loop that waits for this window, even when nothing else happens.
    QAbstractEventDispatcher::instance()->wakeUp();
  }

  void StateChanged() override { MarkChanged(); }

  // Called by the window.

  void Closed() {
    RunHandler(context_, [this] { form_.Close(); });
  }

  void Escaped() {
    CommandButton* const cancel = form_.CancelButton();
    RunHandler(context_, [&] { cancel ? cancel->Click() : form_.Close(); });
  }

  void BoundsChanged() {
    if (!window_->isVisible() || showing_bounds_) return;
    form_.TakeBounds({window_->x(), window_->y(), window_->width(), window_->height()});
  }

 protected:
  void ShowState() override {
    window_->setWindowTitle(ToQString(OneLine(form_.Caption())));
    ShowBounds();
    ShowTabOrder();
  }

 private:
  void GiveFontSizes() {
    for (Control* control : form_.Controls()) {
      if (control->GetFont().size <= 0)
        control->SetFont({control->GetFont().name, DesktopFontSize()});
    }
  }

  // A window that is too large for the screen scrolls rather than cutting anything off.
  void BuildContent() {
    content_ = new Content;
    content_->setLayout(BuildLayout(form_.GetLayout(), context_, peers_));
    scroller_ = new QScrollArea;
    scroller_->setFrameShape(QFrame::NoFrame);
    scroller_->setWidgetResizable(true);
    scroller_->setFocusPolicy(Qt::NoFocus);
    scroller_->setWidget(content_);
    auto* const frame = new QVBoxLayout(window_);
    frame->setContentsMargins(0, 0, 0, 0);
    frame->addWidget(scroller_);
    frame->setSizeConstraint(QLayout::SetNoConstraint);
  }

  // Where everything fits, a scroll bar can only appear by mistake, but it would stay: it narrows
  // the contents, so text that wraps needs more lines.
  void AllowScrolling(bool allow) {
    const auto policy = allow ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff;
    scroller_->setHorizontalScrollBarPolicy(policy);
    scroller_->setVerticalScrollBarPolicy(policy);
  }

  // With a default button, a button that has the focus takes over its part and its look; without
  // one, Enter does nothing outside a button.
  void SetUpButtons() {
    for (auto* const button : window_->findChildren<QPushButton*>()) {
      button->setAutoDefault(form_.DefaultButton() != nullptr);
    }
    auto* const button = qobject_cast<QPushButton*>(WidgetOf(form_.DefaultButton()));
    if (button) button->setDefault(true);
  }

  QWidget* WidgetOf(const Control* control) const {
    const auto found = std::find_if(peers_.begin(), peers_.end(), [&](const PeerPtr& peer) {
      return control && &peer->GetControl() == control;
    });
    return found == peers_.end() ? nullptr : (*found)->GetWidget();
  }

  std::vector<QWidget*> TabOrder() const {
    std::vector<QWidget*> order;
    for (const PeerPtr& peer : peers_) {
      if (peer->TakesFocus()) order.push_back(peer->GetWidget());
    }
    const auto first = std::find(order.begin(), order.end(), WidgetOf(form_.FirstInTabOrder()));
    if (first != order.end()) std::rotate(order.begin(), first, first + 1);
    return order;
  }

  void ShowTabOrder() {
    const std::vector<QWidget*> order = TabOrder();
    if (order == tab_order_) return;
    tab_order_ = order;
    for (size_t i = 1; i < order.size(); ++i) QWidget::setTabOrder(order[i - 1], order[i]);
  }

  void FocusFirst() {
    for (QWidget* const widget : tab_order_) {
      if (!widget->isEnabled() || !widget->isVisibleTo(window_)) continue;
      return widget->setFocus(Qt::OtherFocusReason);
    }
  }

  void ShowBounds() {
    const Rect& bounds = form_.Bounds();
    const QSize size(bounds.width, bounds.height);
    const QPoint place(bounds.left, bounds.top);
    showing_bounds_ = true;
    if (!form_.Resizable()) window_->setFixedSize(size);
    if (window_->size() != size) window_->resize(size);
    if (window_->pos() != place || !window_->testAttribute(Qt::WA_Moved)) window_->move(place);
    showing_bounds_ = false;
  }

  QSize LargestSize() const {
    const int title = window_->style()->pixelMetric(QStyle::PM_TitleBarHeight);
    return AvailableScreen(windows_).size() - QSize(0, title);
  }

  // Inner layouts cache their measures until the window is shown, those of hidden pages even
  // longer.
  void ForgetMeasures() {
    for (QLayout* const layout : content_->findChildren<QLayout*>()) layout->invalidate();
  }

  void Leave() {
    *open_ = false;
    std::erase_if(windows_.shown, [this](const auto& shown) { return shown.form == &form_; });
  }

  // Boxes over this window belong to somebody else and must outlive it.
  void LetGoOfChildren() {
    for (QObject* const object : QObjectList(window_->children())) {
      auto* const child = qobject_cast<QWidget*>(object);
      if (!child || !child->isWindow()) continue;
      const bool shown = child->isVisible();
      child->setParent(nullptr, child->windowFlags());
      if (shown) child->show();
    }
  }

  Form& form_;
  Windows& windows_;
  PeerContext context_;
  Window* window_;
  QScrollArea* scroller_ = nullptr;
  Content* content_ = nullptr;
  std::vector<PeerPtr> peers_;  // in the order of the layout
  std::vector<QWidget*> tab_order_;
  std::shared_ptr<bool> open_ = std::make_shared<bool>(false);
  bool showing_bounds_ = false;
};

void Window::reject() {
  if (form_) form_->Escaped();
}

void Window::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (form_) form_->Closed();
}

void Window::moveEvent(QMoveEvent* event) {
  QDialog::moveEvent(event);
  if (form_) form_->BoundsChanged();
}

void Window::resizeEvent(QResizeEvent* event) {
  QDialog::resizeEvent(event);
  if (form_) form_->BoundsChanged();
}

// Without a default button, the dialog ignores Enter; the button with the focus handles it.
void Window::keyPressEvent(QKeyEvent* event) {
  auto* const button = qobject_cast<QPushButton*>(focusWidget());
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && button && !button->autoDefault()) return button->click();
  QDialog::keyPressEvent(event);
}

}  // namespace

std::unique_ptr<FormPeer> MakeQtForm(Form& form, Windows& windows) {
  return std::make_unique<QtForm>(form, windows);
}

QRect AvailableScreen(const Windows& windows) {
  const QWidget* const top = windows.Top();
  return (top ? top->screen() : QGuiApplication::primaryScreen())->availableGeometry();
}

}  // namespace vesko
