#pragma once

#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <functional>
#include <vector>

namespace vesko {

/// A person in front of the component's windows, who does what a test has written down, step by
/// step, with real mouse and key events. A window that no step waits for ends the test program, as
/// does a step whose window does not come: nothing else could close the windows.
class User {
 public:
  using Condition = std::function<bool(QWidget& window)>;
  using Deed = std::function<void(QWidget& window)>;

  User();

  /// Fails the test when steps are left.
  ~User();

  /// The next step: when the window of this name ("fListMail") is the one in front, do this to it.
  void In(const QString& window, Deed deed) { In(window, nullptr, std::move(deed)); }
  /// The same, but not before the condition holds.
  void In(const QString& window, Condition condition, Deed deed);

 private:
  struct Step {
    QString window;
    Condition condition;
    Deed deed;
  };

  void Look();
  [[noreturn]] void GiveUp(const QString& why, QWidget* window);

  std::vector<Step> steps_;
  size_t next_ = 0;
  QPointer<QWidget> dealt_with_;  // the step's deed is still on its way
  std::chrono::steady_clock::time_point since_ = std::chrono::steady_clock::now();
  QTimer timer_;
};

/// A mouse click on the button of this control name. The test fails where there is none or it
/// cannot be pressed.
void Press(QWidget& window, const QString& button);

/// Types a text into a text box, key by key.
void Type(QWidget& window, const QString& text_box, const QString& text);

/// What a text box shows.
QString Shown(QWidget& window, const QString& text_box);

/// The texts of a list's row.
QStringList Row(QWidget& window, const QString& list, int row);

}  // namespace vesko
