#pragma once

#include <QIcon>
#include <QMenu>
#include <QObject>
#include <QString>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>

#include "HostWindow.h"
#include "MailComponent.h"
#include "Scheduler.h"

namespace vesko_host {

/// The running program: an icon in the desktop's tray, or a small window where there is no tray, a
/// menu, and checks at the interval that the component names. One operation runs at a time.
class TrayHost : public QObject {
 public:
  /// The component must outlive the host.
  explicit TrayHost(MailComponent& component);

  /// Shows the icon or the window and begins to wait for the first check.
  void Show();

  /// Starts a command, which runs when control is back in the event loop: "check", "view",
  /// "configure", "quit", or the empty one, which shows the window. Returns "ok", "busy" where an
  /// operation is running, or "unknown".
  QString Run(const QString& command);

 protected:
  /// Looks for the component's list window, whose caption says how much mail is new.
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildMenu();
  void Operate(void (MailComponent::*operation)());
  void Start(void (MailComponent::*operation)());
  void AfterOperation();
  void CheckIsDue();
  void ShowNewMail(bool new_mail);
  void Quit();

  MailComponent& component_;
  Scheduler scheduler_;
  QIcon idle_icon_;
  QIcon new_mail_icon_;
  QSystemTrayIcon tray_;
  QMenu menu_;
  std::unique_ptr<HostWindow> window_;
  bool operating_ = false;
  bool quitting_ = false;
};

}  // namespace vesko_host
