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

/// The running program: an icon in the desktop's tray, or a small window where there is none, a
/// menu, and checks at the component's own interval.
class TrayHost : public QObject {
 public:
  /// The component must outlive the host.
  explicit TrayHost(MailComponent& component);

  /// Shows icon or window and begins to wait for the first check.
  void Show();

  /// Runs a command ("check", "view", "configure", "quit", or empty: show yourself) once the caller
  /// is done. Returns a word for the caller: "ok", "busy" or "unknown".
  QString Run(const QString& command);

 protected:
  /// Watches for the component's list window, whose caption tells how much mail is new.
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
