#include "e2e/User.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTest>
#include <cstdlib>

namespace vesko {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 30s;

template <typename Widget>
Widget* Find(QWidget& window, const QString& name) {
  auto* found = window.findChild<Widget*>(name);
  EXPECT_NE(found, nullptr) << name.toStdString() << " in " << window.objectName().toStdString();
  return found;
}

}  // namespace

User::User() {
  QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
  timer_.start(10ms);
}

User::~User() {
  EXPECT_EQ(next_, steps_.size())
      << "the first step that was not reached waits for "
      << (next_ < steps_.size() ? steps_[next_].window : "").toStdString();
}

void User::In(const QString& window, Condition condition, Deed deed) {
  steps_.push_back({window, std::move(condition), std::move(deed)});
}

void User::Look() {
  if (std::chrono::steady_clock::now() - since_ > kPatience) GiveUp("nothing happens", nullptr);
  QWidget* window = QApplication::activeModalWidget();
  if (!window || dealt_with_ == window) return;
  const QString name = window->objectName();
  if (next_ == steps_.size() || steps_[next_].window != name) {
    if (name != "fCheckMail") GiveUp("unexpected window", window);
    return;  // a check under way needs nobody
  }
  const Step& step = steps_[next_];
  if (step.condition && !step.condition(*window)) return;
  ++next_;
  since_ = std::chrono::steady_clock::now();
  dealt_with_ = window;
  // Not from here: a press that opens the next window returns when that one is closed.
  QTimer::singleShot(0, window, [this, window = QPointer(window), deed = step.deed] {
    dealt_with_ = nullptr;
    if (window) deed(*window);
  });
}

void User::GiveUp(const QString& why, QWidget* window) {
  ADD_FAILURE() << why.toStdString() << " at step " << next_ + 1 << " of " << steps_.size() << ": "
                << (window ? window->objectName() + " " + window->windowTitle() : "").toStdString();
  std::fflush(nullptr);
  std::_Exit(1);
}

void Press(QWidget& window, const QString& button) {
  auto* found = Find<QAbstractButton>(window, button);
  if (!found) return;
  EXPECT_TRUE(found->isEnabled() && found->isVisible()) << button.toStdString();
  QTest::mouseClick(found, Qt::LeftButton);
}

void Type(QWidget& window, const QString& text_box, const QString& text) {
  auto* found = Find<QLineEdit>(window, text_box);
  if (found) QTest::keyClicks(found, text);
}

QString Shown(QWidget& window, const QString& text_box) {
  auto* found = Find<QWidget>(window, text_box);
  if (auto* line = qobject_cast<QLineEdit*>(found)) return line->text();
  if (auto* text = qobject_cast<QPlainTextEdit*>(found)) return text->toPlainText();
  ADD_FAILURE() << text_box.toStdString() << " shows no text";
  return {};
}

QStringList Row(QWidget& window, const QString& list, int row) {
  QStringList cells;
  auto* view = Find<QAbstractItemView>(window, list);
  if (!view) return cells;
  const QAbstractItemModel& model = *view->model();
  for (int column = 0; column < model.columnCount(); ++column) {
    cells += model.index(row, column).data().toString();
  }
  return cells;
}

}  // namespace vesko
