#pragma once

#include <QPoint>
#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/common/Mirror.h"
#include "ui/Form.h"
#include "ui/Toolkit.h"

namespace vesko {

/// The windows of one toolkit.
struct Windows {
  struct Shown {
    const Form* form;
    QWidget* window;
    std::shared_ptr<bool> open;  // false once the window is hidden or gone
  };

  Mirror mirror;
  std::vector<Shown> shown;  // each over the one before
  std::shared_ptr<std::optional<QPoint>> popup_place = std::make_shared<std::optional<QPoint>>();

  /// The window that the next one belongs over; null where none is shown.
  QWidget* Top() const { return shown.empty() ? nullptr : shown.back().window; }
};

/// Builds the window of a form, hidden still. `windows` must outlive it.
std::unique_ptr<FormPeer> MakeQtForm(Form& form, Windows& windows);

/// The part of the screen that windows may cover, on the screen of the window shown last.
QRect AvailableScreen(const Windows& windows);

}  // namespace vesko
