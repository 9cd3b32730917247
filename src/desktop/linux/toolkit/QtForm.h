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

/// The windows of one toolkit, and what they share. Lives as long as the toolkit.
struct Windows {
  /// A window between Show and Hide.
  struct Shown {
    const Form* form;  // not owned, nor is the window
    QWidget* window;
    std::shared_ptr<bool> open;  // false once the window is hidden or gone
  };

  Mirror mirror;
  std::vector<Shown> shown;  // each over the one before
  /// Set while a menu that was asked for by keyboard opens; else menus open at the mouse cursor.
  std::shared_ptr<std::optional<QPoint>> popup_place = std::make_shared<std::optional<QPoint>>();

  /// The window that the next one belongs over; null where none is shown.
  QWidget* Top() const { return shown.empty() ? nullptr : shown.back().window; }
};

/// Builds the window of a form with all its controls, hidden still, over the window on top.
/// Controls without a font size get the desktop's. Form and `windows` must outlive the result; the
/// form may destroy it from within one of its events.
std::unique_ptr<FormPeer> MakeQtForm(Form& form, Windows& windows);

/// The part of the screen that windows may cover, in logical pixels, on the screen of the window on
/// top or else on the primary screen.
QRect AvailableScreen(const Windows& windows);

}  // namespace vesko
