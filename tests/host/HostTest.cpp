// The tray host with a component that only records its calls.

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <string>
#include <thread>
#include <tuple>
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
  for (QWidget* widget : QApplication::allWidgets()) {
    auto* const button = qobject_cast<QPushButton*>(widget);
    if (button != nullptr && button->text() == caption) return button;
  }
  return nullptr;
}

QString Status() {
  for (QWidget* widget : QApplication::allWidgets()) {
    auto* const label = qobject_cast<QLabel*>(widget);
    if (label != nullptr && !label->text().isEmpty()) return label->text();
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

class TrayHostTest : public testing::Test {
 protected:
  TrayHostTest() { host.Show(); }

  NotingComponent component;
  TrayHost host{component};
};

TEST_F(TrayHostTest, RunsOneOperationAtATimeAndHandsOverTheFont) {
  component.during = [&] {
    EXPECT_EQ(host.Run("check"), "busy");
    EXPECT_FALSE(Button("&Configure")->isEnabled());
  };
  EXPECT_EQ(host.Run("view"), "ok");
  EXPECT_EQ(host.Run("configure"), "busy");  // requested, though not yet begun
  EXPECT_EQ(component.calls, Calls{});
  QCoreApplication::processEvents();
  EXPECT_EQ(component.font, QApplication::font().family());
  Button("&Configure")->click();
  QCoreApplication::processEvents();
  EXPECT_EQ(component.calls, (Calls{"view", "configure"}));
}

TEST_F(TrayHostTest, LeavesABusyComponentAloneAndKnowsItsWords) {
  component.busy = true;
  EXPECT_EQ(host.Run("check"), "busy");
  component.busy = false;
  for (const char* word : {"format", "CHECK", "check now", "--check"}) {
    EXPECT_EQ(host.Run(word), "unknown") << word;
  }
  EXPECT_EQ(host.Run(""), "ok");
  QCoreApplication::processEvents();
  EXPECT_EQ(component.calls, Calls{});
}

TEST_F(TrayHostTest, ShowsWhatTheListWindowSaysIsNew) {
  const std::pair<const char*, const char*> rows[] = {
      {"5 MAILS (3 NEW MAILS, 1 SPAM MAILS)", "You have new mail."},
      {"Checking mail box of '(9 NEW MAILS' ...", "You have new mail."},
      {"5 MAILS (0 NEW MAILS, 1 SPAM MAILS)", "No new mail."},
      {"New Messages", "No new mail."}};
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

TEST_F(TrayHostTest, QuitsBehindTheOperationThatRuns) {
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

/// A Unix socket by system calls, which can be used as another user.
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
  void Write(const std::string& words) const {
    EXPECT_EQ(write(socket_, words.data(), words.size()), static_cast<ssize_t>(words.size()));
  }
  bool IsClosed() const {
    char byte;
    return recv(socket_, &byte, 1, MSG_DONTWAIT) == 0;
  }

  bool Listen() const {
    return bind(socket_, Address(), sizeof address_) == 0 && listen(socket_, 8) == 0;
  }
  /// Writes to the first client until it hangs up.
  void Say(std::string words) {
    speaker_ = std::thread([this, words = std::move(words)] {
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

  QLocalSocket chatter;  // never ends its line: dropped without holding up the others
  chatter.connectToServer(path);
  chatter.write(QByteArray(1000, 'x'));
  QLocalSocket silent;  // dropped after the time for an exchange
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

TEST(SingleInstance, TheSocketStandsWhereNobodyElseCanPutOne) {
  QTemporaryDir root;
  const auto in = [&](const char* name) { return root.filePath(QString::fromLatin1(name)); };
  const std::pair<const char*, mode_t> folders[] = {{"good", 0700},
                                                    {"link", 0700},
                                                    {"file", 0700},
                                                    {"alien/vesko-host", 0700},
                                                    {"open/vesko-host", 0701},
                                                    {"group/vesko-host", 0710}};
  for (const auto& [name, mode] : folders) {
    ASSERT_TRUE(QDir(root.path()).mkpath(name));
    ASSERT_EQ(chmod(qPrintable(in(name)), mode), 0);
  }
  ASSERT_TRUE(QFile::link(in("good"), in("link/vesko-host")));
  ASSERT_TRUE(QFile(in("file/vesko-host")).open(QIODevice::WriteOnly));
  const bool is_alien = chown(qPrintable(in("alien/vesko-host")), kOtherUser, kOtherUser) == 0;

  const QByteArray before[] = {qgetenv("XDG_CACHE_HOME"), qgetenv("XDG_RUNTIME_DIR")};
  qputenv("XDG_CACHE_HOME", in("cache").toUtf8());
  const auto path_for = [](const QByteArray& runtime) {
    runtime.isNull() ? qunsetenv("XDG_RUNTIME_DIR") : qputenv("XDG_RUNTIME_DIR", runtime);
    return InstancePath();
  };
  for (int start = 0; start < 2; ++start) {
    EXPECT_EQ(path_for(in("good").toUtf8()), in("good/vesko-host/instance"));
  }
  EXPECT_EQ(QFileInfo(in("good/vesko-host")).permissions() & QFile::Permissions(0x77), 0);
  std::vector<QByteArray> unsafe = {{}, "", "relative", in("missing").toUtf8()};
  for (const char* name : {"open", "group", "link", "file"}) unsafe.push_back(in(name).toUtf8());
  if (is_alien) unsafe.push_back(in("alien").toUtf8());
  for (const QByteArray& runtime : unsafe) {
    EXPECT_EQ(path_for(runtime), in("cache/vesko-host/instance")) << runtime.constData();
  }
  qputenv("XDG_CACHE_HOME", in("open").toUtf8());
  EXPECT_EQ(path_for({}), QString());
  qputenv("XDG_CACHE_HOME", before[0]);
  qputenv("XDG_RUNTIME_DIR", before[1]);
}

TEST(Autostart, WritesAndRemovesTheEntry) {
  for (const bool on : {true, true, false, false, true, false}) {
    EXPECT_TRUE(SetAutostart(on));
    EXPECT_EQ(AutostartIsOn(), on);
  }
}

struct Outcome {
  int status;
  std::string output, errors;
  bool operator==(const Outcome&) const = default;
};

const QStringList kNoDisplay = {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"};

Outcome RunHost(const QStringList& arguments, const QStringList& without = {}) {
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  for (const QString& name : without) environment.remove(name);
  QProcess process;
  process.setProcessEnvironment(environment);
  process.start(QStringLiteral(VESKO_HOST), arguments);
  EXPECT_TRUE(process.waitForFinished());
  return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
          process.readAllStandardOutput().toStdString(),
          process.readAllStandardError().toStdString()};
}

TEST(CommandLine, HelpNamesTheProgramAndItsOptions) {
  const Outcome help = RunHost({"--help"}, kNoDisplay);
  EXPECT_EQ(help.output.find("Usage: vesko-host [options]\n"), 0u) << help.output;
  for (const char* option : {"--check ", "--view ", "--configure ", "--quit ", "--demo "}) {
    EXPECT_NE(help.output.find(option), std::string::npos) << option;
  }
  EXPECT_EQ(RunHost({"-h"}, kNoDisplay), (Outcome{0, help.output, ""}));
}

TEST(CommandLine, WhatCannotBeDoneIsSaidInWords) {
  const struct {
    const char* argument;
    QStringList without;
    Outcome outcome;
  } rows[] = {
      {"--version", kNoDisplay, {0, "vesko-host " VESKO_VERSION "\n", ""}},
      {"--chek", {}, {1, "", "Unknown option 'chek'.\n"}},
      {"check", {}, {1, "", "Unexpected argument. Try --help.\n"}},
      {"--check=now", {}, {1, "", "Unexpected value after '--check'.\n"}},
      {"--quit", kNoDisplay, {0, "", ""}},
      {"--check", kNoDisplay, {1, "", "vesko-host needs a display.\n"}},
      {"--view",
       {},
       {1, "",
        "vesko-host: /nowhere/libVeskoEx.so: cannot open shared object file: No such file or "
        "directory (0x800401F8)\n"}},
  };
  // Takes precedence over a registration for the machine, if there is one.
  const QString classes = qEnvironmentVariable("XDG_CONFIG_HOME") + "/VeskoEx/classes";
  ASSERT_TRUE(QDir().mkpath(classes));
  QFile file(classes + "/veskoex.cveskoex");
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(
      "CLSID={63A46929-8458-4AA5-8CB6-4BD1B0873CC2}\n"
      "InprocServer32=/nowhere/libVeskoEx.so\n");
  file.close();
  for (const auto& row : rows) {
    const Outcome outcome = RunHost({row.argument}, row.without);
    EXPECT_EQ(outcome, row.outcome) << row.argument << ": " << outcome.errors;
  }
}

TEST(CommandLine, TheRunningInstancesAnswerIsTheExitStatus) {
  const std::tuple<const char*, int, std::string> rows[] = {
      {"ok", 0, ""},
      {"busy", 2, "vesko-host is busy. Try again later.\n"},
      {"unknown", 1, "The vesko-host that runs does not answer.\n"}};
  for (const auto& row : rows) {
    SingleInstance running(InstancePath());
    ASSERT_TRUE(running.Listen([&](const QString& command) {
      EXPECT_EQ(command, "view");
      return QString::fromLatin1(std::get<0>(row));
    }));
    QProcess second;
    second.start(QStringLiteral(VESKO_HOST), {"--view"});
    EXPECT_TRUE(QTest::qWaitFor([&] { return second.state() == QProcess::NotRunning; }, 20'000));
    EXPECT_EQ(second.exitCode(), std::get<1>(row));
    EXPECT_EQ(second.readAllStandardError().toStdString(), std::get<2>(row));
  }
}

}  // namespace
}  // namespace vesko_host

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  const QTemporaryDir home;  // so that the program writes nothing to the real home
  for (const char* name :
       {"HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_RUNTIME_DIR"}) {
    qputenv(name, home.path().toUtf8());
  }
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
