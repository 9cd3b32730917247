#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <functional>
#include <memory>

#include "desktop/ToolkitFixture.h"
#include "support/AnyForm.h"

namespace vesko {

/// Windows are driven and looked at while they are shown.
class QtWindowTest : public testing::Test {
 protected:
  /// Lets everything be shown and everything that is pending happen.
  void Settle() {
    for (int i = 0; i < 3; ++i) {
      toolkit->GetPump().RunPending(std::chrono::milliseconds(0));
      QTest::qWait(12);
    }
  }

  /// Shows the form, lets everything settle, runs the step and unloads the form.
  void WhileShown(AnyForm& shown, const std::function<void()>& step) {
    shown.While([&] {
      Settle();
      step();
    });
  }

  template <typename Widget = QWidget>
  static Widget* Native(const Control& control) {
    for (QWidget* window : QApplication::topLevelWidgets()) {
      auto* found = window->findChild<Widget*>(QString::fromStdString(control.Name()));
      if (found) return found;
    }
    ADD_FAILURE() << "no widget for " << control.Name();
    return nullptr;
  }

  static QWidget* WindowOf(const Control& control) { return Native(control)->window(); }

  std::unique_ptr<Toolkit> toolkit = MakeTestToolkit();
  AnyForm form{*toolkit};
};

}  // namespace vesko
