#include "demo/Onlooker.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <chrono>
#include <iostream>

namespace vesko::demo {
namespace {

using namespace std::chrono_literals;

constexpr auto kBetweenLooks = 20ms;
constexpr int kLooksUntilSettled = 10;   // a new window is still being laid out and painted
constexpr int kLooksUntilGivingUp = 20;  // a check that asks once more does so at once

void Press(QWidget& window, const QString& button) {
  if (auto* found = window.findChild<QAbstractButton*>(button)) found->click();
}

void Tell(const QString& text) { std::cerr << text.trimmed().toStdString() << std::endl; }

}  // namespace

Onlooker::Onlooker(const QString& picture_folder) : picture_folder_(picture_folder) {
  QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
  timer_.start(kBetweenLooks);
}

void Onlooker::Look() {
  QWidget* window = QApplication::activeModalWidget();
  if (!window) return;
  if (window->objectName() == "fCheckMail") {
    LookAtProgress(*window);
  } else if (window->objectName() == "fListMail") {
    LookAtList(*window);
  } else {
    CloseBox(*window);
  }
}

void Onlooker::LookAtProgress(QWidget& window) {
  // A server that refuses the connection is tried again without a question.
  if (saw_trouble_ && ++looks_since_trouble_ > kLooksUntilGivingUp) Press(window, "cmdCancel");
  const auto* bar = window.findChild<QProgressBar*>();
  if (has_progress_picture_ || !bar || bar->maximum() < 2 || bar->value() * 2 < bar->maximum()) {
    return;
  }
  has_progress_picture_ = true;
  Photograph(window, "progress-window.png");
}

void Onlooker::LookAtList(QWidget& window) {
  if (++looks_at_list_ < kLooksUntilSettled) return;
  looks_at_list_ = 0;
  Photograph(window, "list-window.png");
  Press(window, "cmdMail(3)");
}

void Onlooker::CloseBox(QWidget& window) {
  if (auto* box = qobject_cast<QMessageBox*>(&window)) {
    Tell(box->text());
    saw_trouble_ = saw_trouble_ || box->icon() != QMessageBox::Information;
  } else {
    for (const QLabel* label : window.findChildren<QLabel*>("lblMessage")) Tell(label->text());
    saw_trouble_ = true;
    Press(window, "cmdAnswer(1)");
  }
  looks_since_trouble_ = 0;
  if (window.isVisible()) window.close();
}

void Onlooker::Photograph(QWidget& window, const QString& name) {
  if (picture_folder_.isEmpty() || !QDir().mkpath(picture_folder_)) return;
  const QString path = QDir(picture_folder_).filePath(name);
  if (window.grab().save(path)) std::cout << "Picture: " << path.toStdString() << std::endl;
}

}  // namespace vesko::demo
