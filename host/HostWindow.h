#pragma once

#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QWidget>
#include <functional>

namespace vesko_host {

/// A window in place of the tray icon, for desktops that have no tray. It shows the commands of the
/// menu as buttons.
class HostWindow : public QWidget {
 public:
  /// The menu must outlive the window. Closing the window calls `close`.
  HostWindow(const QMenu& menu, std::function<void()> close);

  /// Shows the icon, in the title bar too, and the status in words.
  void ShowStatus(const QIcon& icon, const QString& status);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  std::function<void()> close_;
  QLabel* picture_;
  QLabel* status_;
};

}  // namespace vesko_host
