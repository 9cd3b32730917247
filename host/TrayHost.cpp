#include "TrayHost.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QRegularExpression>
#include <QWidget>

#include "Autostart.h"

namespace vesko_host {

namespace {

struct Command {
  const char* word;
  const char* caption;
  void (MailComponent::*operation)();
};

constexpr Command kCommands[] = {
    {"check", "Check mail &now", &MailComponent::CheckMail},
    {"view", "&View mail", &MailComponent::ViewMail},
    {"configure", "&Configure", &MailComponent::Configure},
};

/// The number of new mails in the caption of the component's list window; -1 for any other window.
int NewMails(const QWidget& window) {
  static const QRegularExpression caption(QStringLiteral("\\((\\d+) NEW MAILS,"));
  const auto match = caption.match(window.windowTitle());
  return match.hasMatch() ? match.captured(1).toInt() : -1;
}

}  // namespace

TrayHost::TrayHost(MailComponent& component)
    : component_(component),
      scheduler_([this] { CheckIsDue(); }),
      idle_icon_(QStringLiteral(":/icons/vesko-host.png")),
      new_mail_icon_(QStringLiteral(":/icons/vesko-host-new.png")) {
  BuildMenu();
  tray_.setContextMenu(&menu_);
  connect(&tray_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason why) {
    if (why == QSystemTrayIcon::Trigger) Run(QStringLiteral("view"));
  });
  qApp->installEventFilter(this);
}

void TrayHost::Show() {
  if (QSystemTrayIcon::isSystemTrayAvailable()) {
    tray_.show();
  } else {
    window_ = std::make_unique<HostWindow>(menu_, [this] { Quit(); });
    window_->show();
  }
  ShowNewMail(false);
  scheduler_.Start(component_.CheckTime());
}

QString TrayHost::Run(const QString& command) {
  if (command == u"quit") {
    QMetaObject::invokeMethod(
        this, [this] { Quit(); }, Qt::QueuedConnection);
    return QStringLiteral("ok");
  }
  if (command.isEmpty()) {
    if (window_) window_->raise();
    return QStringLiteral("ok");
  }
  for (const Command& known : kCommands) {
    if (command != QLatin1String(known.word)) continue;
    if (operating_ || component_.IsBusy()) return QStringLiteral("busy");
    Start(known.operation);
    return QStringLiteral("ok");
  }
  return QStringLiteral("unknown");
}

void TrayHost::BuildMenu() {
  for (const Command& command : kCommands) {
    connect(menu_.addAction(QString::fromLatin1(command.caption)), &QAction::triggered, this,
            [this, word = QString::fromLatin1(command.word)] { Run(word); });
  }
  menu_.addSeparator();
  QAction* autostart = menu_.addAction(QStringLiteral("&Start at login"));
  autostart->setCheckable(true);
  connect(&menu_, &QMenu::aboutToShow, autostart,
          [autostart] { autostart->setChecked(AutostartIsOn()); });
  connect(autostart, &QAction::triggered, autostart, [](bool on) { SetAutostart(on); });
  menu_.addSeparator();
  connect(menu_.addAction(QStringLiteral("&Quit")), &QAction::triggered, this, [this] { Quit(); });
}

void TrayHost::Start(void (MailComponent::*operation)()) {
  operating_ = true;
  for (QAction* action : menu_.actions().first(std::size(kCommands))) action->setEnabled(false);
  // Queued, so that the caller (a menu, another process) is answered before the modal window opens.
  QMetaObject::invokeMethod(
      this, [this, operation] { Operate(operation); }, Qt::QueuedConnection);
}

void TrayHost::Operate(void (MailComponent::*operation)()) {
  scheduler_.Stop();
  component_.SetFont(QApplication::font().family());
  (component_.*operation)();
  AfterOperation();
}

void TrayHost::AfterOperation() {
  operating_ = false;
  if (quitting_) return QApplication::exit(0);
  for (QAction* action : menu_.actions().first(std::size(kCommands))) action->setEnabled(true);
  scheduler_.Start(component_.CheckTime());
}

void TrayHost::CheckIsDue() { Run(QStringLiteral("check")); }

bool TrayHost::eventFilter(QObject* watched, QEvent* event) {
  if (operating_ && (event->type() == QEvent::WindowTitleChange || event->type() == QEvent::Show) &&
      watched->isWidgetType()) {
    const int count = NewMails(*static_cast<QWidget*>(watched));
    if (count >= 0) ShowNewMail(count > 0);
  }
  return QObject::eventFilter(watched, event);
}

void TrayHost::ShowNewMail(bool new_mail) {
  const QIcon& icon = new_mail ? new_mail_icon_ : idle_icon_;
  const QString status =
      new_mail ? QStringLiteral("You have new mail.") : QStringLiteral("No new mail.");
  tray_.setIcon(icon);
  tray_.setToolTip(status);
  if (window_) window_->ShowStatus(icon, status);
}

void TrayHost::Quit() {
  if (!operating_) return QApplication::exit(0);
  // Closing the component's windows ends its operation; the program ends after it.
  quitting_ = true;
  QApplication::closeAllWindows();
}

}  // namespace vesko_host
