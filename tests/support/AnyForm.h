#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "ui/Controls.h"
#include "ui/Form.h"

namespace vesko {

/// A window of whatever controls a test declares behind it.
class AnyForm : public Form {
 public:
  explicit AnyForm(Toolkit& toolkit) : Form("AnyForm", toolkit) {}
  ~AnyForm() override { TakeDown(); }

  using Form::SetCancelButton;
  using Form::SetDefaultButton;
  using Form::SetLayout;
  using Form::SetResizable;
  using Form::TakeDown;

  /// Shows the window, runs a step as its activation, and unloads it. The controls stand in a
  /// column where no layout was set.
  void While(std::function<void()> step) {
    Open([this, step = std::move(step)] {
      step();
      Unload();
    });
  }

  /// The same, but something else has to unload the window.
  void Open(std::function<void()> step = {}) {
    step_ = std::move(step);
    if (GetLayout().items.empty() && !GetLayout().control) SetLayout(InAColumn());
    ShowModal();
  }

  int closed = 0;

 private:
  Layout InAColumn() {
    std::vector<Layout> items;
    for (Control* control : Controls()) items.push_back(Item(*control));
    return Column(std::move(items));
  }

  void OnActivate() override {
    if (step_) step_();
  }
  void OnClose() override {
    ++closed;
    Unload();
  }

  std::function<void()> step_;
};

}  // namespace vesko
