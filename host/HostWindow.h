#pragma once

#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QWidget>
#include <functional>

namespace vesko_host {

/// Stands in for the tray icon where the desktop has no tray: the menu's commands as buttons.
class HostWindow : public QWidget {
 public:
  /// The menu must outlive the window. Closing the window calls `close`.
  HostWindow(const QMenu& menu, std::function<void()> close);

  void ShowStatus(const QIcon& icon, const QString& status);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  std::function<void()> close_;
  QLabel* picture_;
  QLabel* status_;
};

}  // namespace vesko_host
