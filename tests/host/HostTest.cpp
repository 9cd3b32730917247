// The tray host over a component that only notes what it is asked.

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <string>
#include <vector>

#include "Autostart.h"
#include "Scheduler.h"
#include "SingleInstance.h"
#include "TrayHost.h"

namespace vesko_host {
namespace {

using std::chrono::milliseconds;

struct NotingComponent final : MailComponent {
  bool IsBusy() override { return busy; }
  int CheckTime() override { return minutes; }
  void SetFont(const QString& face) override { font = face; }
  void CheckMail() override { Run("check"); }
  void ViewMail() override { Run("view"); }
  void Configure() override { Run("configure"); }

  void Run(const char* name) {
    calls.emplace_back(name);
    if (during) during();
  }

  bool busy = false;
  int minutes = -1;
  QString font;
  std::vector<std::string> calls;
  std::function<void()> during;
};

using Calls = std::vector<std::string>;

QPushButton* Button(const QString& caption) {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    for (auto* button : window->findChildren<QPushButton*>()) {
      if (button->text() == caption) return button;
    }
  }
  return nullptr;
}

QString Status() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (dynamic_cast<HostWindow*>(window) == nullptr) continue;
    for (auto* label : window->findChildren<QLabel*>()) {
      if (!label->text().isEmpty()) return label->text();
    }
  }
  return {};
}

TEST(Scheduler, WaitsTheMinutesInStepsThatATimerHolds) {
  Scheduler scheduler([] {});
  for (const int minutes : {1, 100'000, INT_MAX}) {
    scheduler.Start(minutes);
    const auto missing = std::chrono::minutes(minutes) - scheduler.Remaining();
    EXPECT_GT(missing, milliseconds(-1000)) << minutes;  // a coarse timer rounds
    EXPECT_LT(missing, milliseconds(5000)) << minutes;
    scheduler.Start(minutes % 2 - 1);  // 0 and -1: no more checks
    EXPECT_LT(scheduler.Remaining(), milliseconds(0));
  }
}

TEST(TrayHost, RunsOneOperationAtATimeAndHandsOverTheFont) {
  NotingComponent component;
  TrayHost host(component);
  host.Show();
  component.during = [&] {
    EXPECT_EQ(host.Run("check"), "busy");
    EXPECT_FALSE(Button("&Configure")->isEnabled());
  };
  EXPECT_EQ(host.Run("view"), "ok");
  EXPECT_EQ(host.Run("configure"), "busy");  // asked for, if not yet begun
  EXPECT_EQ(component.calls, Calls{});
  QCoreApplication::processEvents();
  EXPECT_EQ(component.calls, Calls{"view"});
  EXPECT_EQ(component.font, QApplication::font().family());
  EXPECT_TRUE(Button("&Configure")->isEnabled());

  Button("&Configure")->click();
  QCoreApplication::processEvents();
  EXPECT_EQ(component.calls, (Calls{"view", "configure"}));
}

TEST(TrayHost, LeavesABusyComponentAloneAndKnowsItsWords) {
  NotingComponent component;
  component.busy = true;
  TrayHost host(component);
  host.Show();
  EXPECT_EQ(host.Run("check"), "busy");
  component.busy = false;
  for (const char* word : {"format", "CHECK", "check now", "--check"}) {
    EXPECT_EQ(host.Run(word), "unknown") << word;
  }
  EXPECT_EQ(host.Run(""), "ok");
  QCoreApplication::processEvents();
  EXPECT_EQ(component.calls, Calls{});
}

TEST(TrayHost, ShowsWhatTheListWindowSaysIsNew) {
  const std::pair<const char*, const char*> rows[] = {
      {"5 MAILS (3 NEW MAILS, 1 SPAM MAILS)", "You have new mail."},
      {"Checking mail box of '(9 NEW MAILS' ...", "You have new mail."},
      {"5 MAILS (0 NEW MAILS, 1 SPAM MAILS)", "No new mail."},
      {"New Messages", "No new mail."}};
  NotingComponent component;
  TrayHost host(component);
  host.Show();
  EXPECT_EQ(Status(), "No new mail.");
  for (const auto& [caption, status] : rows) {
    component.during = [&, caption = caption] {
      QWidget list;
      list.setWindowTitle(caption);
      list.show();
    };
    host.Run("check");
    QCoreApplication::processEvents();
    EXPECT_EQ(Status(), status) << caption;
  }
}

TEST(TrayHost, QuitsBehindTheOperationThatRuns) {
  NotingComponent component;
  TrayHost host(component);
  host.Show();
  bool window_closed = false;
  component.during = [&] {
    QWidget modal;
    modal.show();
    host.Run("quit");
    while (modal.isVisible()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    window_closed = true;
  };
  host.Run("check");
  EXPECT_EQ(QApplication::exec(), 0);
  EXPECT_TRUE(window_closed);
}

TEST(SingleInstance, HandsTheCommandToTheFirst) {
  QTemporaryDir folder;
  const QString name = folder.filePath("socket");
  EXPECT_EQ(SingleInstance(name).HandOver("check"), std::nullopt);
  ASSERT_TRUE(QFile(name).open(QIODevice::WriteOnly));  // left behind by a process that died

  QStringList heard;
  SingleInstance first(name);
  ASSERT_TRUE(first.Listen([&](const QString& command) {
    heard.append(command);
    return QStringLiteral("ok");
  }));

  QLocalSocket chatter;  // talks without an end: dropped, and nobody else waits for it
  chatter.connectToServer(name);
  chatter.write(QByteArray(1000, 'x'));
  QLocalSocket second;
  second.connectToServer(name);
  second.write("view\n");
  EXPECT_TRUE(QTest::qWaitFor([&] { return second.canReadLine(); }));
  EXPECT_EQ(second.readLine(), "ok\n");
  EXPECT_TRUE(QTest::qWaitFor([&] { return chatter.state() == QLocalSocket::UnconnectedState; }));
  EXPECT_EQ(heard, QStringList("view"));
}

TEST(Autostart, WritesAndRemovesTheEntry) {
  QStandardPaths::setTestModeEnabled(true);
  for (const bool on : {true, true, false, false, true, false}) {
    EXPECT_TRUE(SetAutostart(on));
    EXPECT_EQ(AutostartIsOn(), on);
  }
  QStandardPaths::setTestModeEnabled(false);
}

}  // namespace
}  // namespace vesko_host

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
