// The tray host over a component that only notes what it is asked.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

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
#include <thread>
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

/// A socket by the bare calls.
class BareSocket {
 public:
  explicit BareSocket(const QString& path) {
    address_.sun_family = AF_UNIX;
    qstrncpy(address_.sun_path, qPrintable(path), sizeof address_.sun_path);
  }
  ~BareSocket() {
    close(socket_);
    if (speaker_.joinable()) speaker_.join();
  }

  bool Connect() const { return connect(socket_, Address(), sizeof address_) == 0; }
  void Write(const std::string& words) const { write(socket_, words.data(), words.size()); }
  bool IsClosed() const {
    char byte;
    return recv(socket_, &byte, 1, MSG_DONTWAIT) == 0;
  }

  bool Listen() const {
    return bind(socket_, Address(), sizeof address_) == 0 && listen(socket_, 8) == 0;
  }
  /// Answers the first one who connects, again and again until nobody reads.
  void Say(std::string words) {
    speaker_ = std::thread([this, words] {
      const int peer = accept(socket_, nullptr, nullptr);
      while (send(peer, words.data(), words.size(), MSG_NOSIGNAL) > 0) {
      }
      close(peer);
    });
  }

 private:
  const sockaddr* Address() const { return reinterpret_cast<const sockaddr*>(&address_); }

  const int socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address_ = {};
  std::thread speaker_;
};

constexpr uid_t kOtherUser = 65534;

TEST(SingleInstance, HandsTheCommandToTheFirst) {
  QTemporaryDir folder;
  const QString path = folder.filePath("socket");
  EXPECT_EQ(SingleInstance(path).HandOver("check"), std::nullopt);
  ASSERT_TRUE(QFile(path).open(QIODevice::WriteOnly));  // left behind by a process that died

  QStringList heard;
  SingleInstance first(path, milliseconds(200));
  ASSERT_TRUE(first.Listen([&](const QString& command) {
    heard.append(command);
    return QStringLiteral("ok");
  }));

  QLocalSocket chatter;  // talks without an end: dropped, and nobody else waits for it
  chatter.connectToServer(path);
  chatter.write(QByteArray(1000, 'x'));
  QLocalSocket silent;  // dropped when the time is over
  silent.connectToServer(path);
  QLocalSocket second;
  second.connectToServer(path);
  second.write("view\n");
  EXPECT_TRUE(QTest::qWaitFor([&] { return second.canReadLine(); }));
  EXPECT_EQ(second.readLine(), "ok\n");
  for (QLocalSocket* dropped : {&chatter, &silent}) {
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return dropped->state() == QLocalSocket::UnconnectedState; }));
  }
  EXPECT_EQ(heard, QStringList("view"));
}

TEST(SingleInstance, AnAnswerThatNeverEndsOrNeverComesIsGivenUp) {
  QTemporaryDir folder;
  BareSocket endless(folder.filePath("endless"));
  ASSERT_TRUE(endless.Listen());
  endless.Say(std::string(1000, 'x'));
  EXPECT_EQ(SingleInstance(folder.filePath("endless")).HandOver("view"), QString());
  BareSocket silent(folder.filePath("silent"));
  ASSERT_TRUE(silent.Listen());
  SingleInstance impatient(folder.filePath("silent"), milliseconds(1));
  EXPECT_EQ(impatient.HandOver("view"), QString());
}

TEST(SingleInstance, AnotherUserIsNeitherAskedNorServed) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can be somebody else";
  QTemporaryDir folder;
  ASSERT_EQ(chmod(qPrintable(folder.path()), 0777), 0);
  BareSocket other(folder.filePath("other"));
  ASSERT_EQ(seteuid(kOtherUser), 0);
  EXPECT_TRUE(other.Listen());
  ASSERT_EQ(seteuid(0), 0);
  other.Say("ok\n");
  EXPECT_EQ(SingleInstance(folder.filePath("other")).HandOver("check"), std::nullopt);

  SingleInstance own(folder.filePath("own"));
  ASSERT_TRUE(own.Listen([](const QString&) {
    ADD_FAILURE() << "a stranger's command is run";
    return QString();
  }));
  ASSERT_EQ(chmod(qPrintable(folder.filePath("own")), 0777), 0);
  const BareSocket stranger(folder.filePath("own"));
  ASSERT_EQ(seteuid(kOtherUser), 0);
  EXPECT_TRUE(stranger.Connect());
  ASSERT_EQ(seteuid(0), 0);
  stranger.Write("quit\n");
  EXPECT_TRUE(QTest::qWaitFor([&] { return stranger.IsClosed(); }));
}

/// A variable of the environment, given back at the end.
class Variable {
 public:
  Variable(const char* name, const QByteArray& value) : name_(name), before_(qgetenv(name)) {
    value.isNull() ? qunsetenv(name) : qputenv(name, value);
  }
  ~Variable() { before_.isNull() ? qunsetenv(name_) : qputenv(name_, before_); }

 private:
  const char* name_;
  QByteArray before_;
};

TEST(SingleInstance, TheSocketStandsWhereNobodyElseCanPutOne) {
  QTemporaryDir root;
  const auto in = [&](const char* name) { return root.filePath(QString::fromLatin1(name)); };
  for (const char* name : {"good", "open/vesko-host", "link", "file", "alien/vesko-host"}) {
    ASSERT_TRUE(QDir(root.path()).mkpath(name));
  }
  ASSERT_EQ(chmod(qPrintable(in("open/vesko-host")), 0711), 0);
  ASSERT_TRUE(QFile::link(in("good"), in("link/vesko-host")));
  ASSERT_TRUE(QFile(in("file/vesko-host")).open(QIODevice::WriteOnly));
  ASSERT_EQ(chmod(qPrintable(in("alien/vesko-host")), 0700), 0);
  const bool is_alien = chown(qPrintable(in("alien/vesko-host")), kOtherUser, kOtherUser) == 0;

  const Variable cache("XDG_CACHE_HOME", in("cache").toUtf8());
  const auto path_for = [](const QByteArray& runtime) {
    const Variable variable("XDG_RUNTIME_DIR", runtime);
    return InstancePath();
  };
  for (int start = 0; start < 2; ++start) {
    EXPECT_EQ(path_for(in("good").toUtf8()), in("good/vesko-host/instance"));
  }
  EXPECT_EQ(QFileInfo(in("good/vesko-host")).permissions() & QFile::Permissions(0x77), 0);
  std::vector<QByteArray> unsafe = {{}, "", "relative", in("missing").toUtf8()};
  for (const char* name : {"open", "link", "file"}) unsafe.push_back(in(name).toUtf8());
  if (is_alien) unsafe.push_back(in("alien").toUtf8());
  for (const QByteArray& runtime : unsafe) {
    EXPECT_EQ(path_for(runtime), in("cache/vesko-host/instance")) << runtime.constData();
  }
  const Variable no_cache("XDG_CACHE_HOME", in("open").toUtf8());
  EXPECT_EQ(path_for({}), QString());
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
