#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <functional>
#include <initializer_list>
#include <memory>
#include <utility>
#include <vector>

#include "desktop/linux/LinuxDesktop.h"
#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// A window of whatever controls a test needs, in a column.
class AnyForm : public Form {
 public:
  AnyForm(Toolkit& toolkit, std::initializer_list<Control*> controls) : Form("AnyForm", toolkit) {
    std::vector<Layout> items;
    for (Control* control : controls) {
      Add(*control);
      items.push_back(Item(*control));
    }
    SetLayout(Column(std::move(items)));
  }
  ~AnyForm() override { TakeDown(); }

  using Form::Add;
  using Form::SetCancelButton;
  using Form::SetDefaultButton;
  using Form::SetResizable;

  std::function<void()> on_activate;
  int closed = 0;

 private:
  void OnActivate() override {
    if (on_activate) on_activate();
  }
  void OnClose() override {
    ++closed;
    Unload();
  }
};

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

  template <typename Step>
  void WhileShown(AnyForm& form, Step step) {
    form.on_activate = [&, step] {
      Settle();
      step();
      form.Unload();
    };
    form.ShowModal();
  }

  /// Runs a step as soon as a loop delivers events, a native box's own included.
  static void Soon(std::function<void()> step) { QTimer::singleShot(0, qApp, std::move(step)); }

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

  std::unique_ptr<Toolkit> toolkit = MakeQtToolkit();
};

}  // namespace vesko
