// One person's first day with the program: real windows on a real X server, real keys and clicks, a
// real mail server.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QProcess>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>

#include "e2e/Dovecot.h"
#include "support/PrivateMachine.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

using std::literals::operator""s;

constexpr auto kPatience = std::chrono::seconds(30);

/// The exit code of a command line, whose output is nobody's.
int Shell(const std::string& command) {
  return WEXITSTATUS(std::system((command + " >/dev/null 2>&1").c_str()));
}

bool Until(const std::function<bool()>& holds) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  while (std::chrono::steady_clock::now() < end) {
    if (holds()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return false;
}

/// A process that ends with its object.
class Process : public QProcess {
 public:
  explicit Process(const std::string& command) {
    setProcessChannelMode(ForwardedChannels);
    start("sh", {"-c", QString::fromStdString("exec " + command)});
  }
  ~Process() override {
    terminate();
    waitForFinished();
  }
  /// The exit code, once it has ended by itself.
  int Wait() { return waitForFinished() && exitStatus() == NormalExit ? exitCode() : -1; }
};

/// What the person sees and does.
class Desk {
 public:
  /// Waits for a window and turns to it.
  static bool TurnTo(const std::string& title) {
    const bool there = Until([&] { return InWindow(title, ""); });
    if (there) InWindow(title, "windowactivate --sync");
    return there;
  }

  /// Closes the window in front.
  static void Leave(const std::string& title) {
    Press("Escape");
    EXPECT_TRUE(Until([&] { return !InWindow(title, ""); }));
  }

  static void Press(const std::string& keys) { Xdotool("key --clearmodifiers --delay 40 " + keys); }
  static void Type(const std::string& text) {
    Xdotool("type --clearmodifiers --delay 20 '" + text + "'");
  }
  /// Clicks at a place of a window.
  static void Click(const std::string& title, int x, int y, int button = 1) {
    InWindow(title, "mousemove --window %1 " + std::to_string(x) + " " + std::to_string(y) +
                        " click " + std::to_string(button));
  }

 private:
  static bool Xdotool(const std::string& command) {
    const bool done = Shell("xdotool " + command) == 0;
    // A person looks before the next key; a program takes some time to draw.
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    return done;
  }
  /// False where no such window is to be seen.
  static bool InWindow(const std::string& title, const std::string& command) {
    return Xdotool("search --onlyvisible --name '^" + title + "' " + command);
  }
};

std::string Message(int number) {
  const std::string n = std::to_string(number);
  return "From: \"Person " + n +
         "\" <p@b.example>\r\nSubject: " + (number % 5 == 0 ? "MELISSA was here " : "Hello ") + n +
         "\r\nMessage-ID: <" + n +
         "@story.example>\r\nDate: Mon, 5 Oct 2026 09:12:44 +0900\r\n\r\nBody\r\n";
}

class Story : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR", "XDG_DATA_HOME"}) {
      setenv(name, home_.Path().c_str(), 1);
    }
    setenv("DISPLAY", display_.c_str(), 1);
    unsetenv("QT_QPA_PLATFORM");
    unsetenv("WAYLAND_DISPLAY");
    ASSERT_TRUE(Until([] { return Shell("xdotool getdisplaygeometry") == 0; }));
    manager_ = std::make_unique<Process>("openbox 2>/dev/null");
    ASSERT_EQ(Shell(VESKO_REGISTER " " VESKO_LIBRARY), 0);
  }

  TempFolder home_;
  // Screens are numbered; the process number keeps tests that run at once apart.
  std::string display_ = ":" + std::to_string(1000 + getpid() % 50000);
  Process screen_{"Xvfb " + display_ + " -screen 0 1280x900x24 -nolisten tcp >/dev/null 2>&1"};
  std::unique_ptr<Process> manager_;
};

TEST_F(Story, FirstRunToCleanMailboxAndBack) {
  Dovecot dovecot({Dovecot::Account{"kim", "first secret"}});
  std::set<std::string> wanted;
  for (int i = 1; i <= 10; ++i) {
    const std::string file = dovecot.Deliver("kim", Message(i));
    if (i % 5 != 0) wanted.insert(file);
  }

  Process first(VESKO_HOST " --check");
  ASSERT_TRUE(Desk::TurnTo("VeskoEx"));  // no account yet: configure now?
  Desk::Press("alt+y");

  ASSERT_TRUE(Desk::TurnTo("POP3 Mail Configurarion"));
  Desk::Press("Tab Tab space");  // past the tabs and the empty list to "New"
  Desk::Press("Tab Tab");        // past "Delete" to the first box
  const std::string port = std::to_string(dovecot.Port());
  for (const std::string& text : {"Home"s, "127.0.0.1"s, "kim"s, "first secret"s, port}) {
    Desk::Type(text);
    Desk::Press("Tab");
  }
  Desk::Press("space Return");  // save the password

  ASSERT_TRUE(Desk::TurnTo("10 MAILS .9 NEW MAILS, 2 SPAM MAILS."));
  Desk::Press("Tab Down");  // from the first button to the list
  ASSERT_TRUE(Desk::TurnTo("10 MAILS .8 NEW MAILS, 2 SPAM MAILS."));
  Desk::Press("ctrl+s");
  ASSERT_TRUE(Desk::TurnTo("10 MAILS .8 NEW MAILS, 3 SPAM MAILS."));
  Desk::Press("ctrl+o");
  ASSERT_TRUE(Desk::TurnTo("10 MAILS .8 NEW MAILS, 2 SPAM MAILS."));
  Desk::Press("ctrl+a ctrl+n");
  ASSERT_TRUE(Desk::TurnTo("10 MAILS .10 NEW MAILS, 2 SPAM MAILS."));

  // By subject, descending: the two "MELISSA" come first, and the click on one reads it.
  Desk::Click("10 MAILS", 260, 22);
  Desk::Click("10 MAILS", 260, 46);
  ASSERT_TRUE(Desk::TurnTo("10 MAILS .9 NEW MAILS, 2 SPAM MAILS."));
  Desk::Click("10 MAILS", 260, 46, 3);  // the menu, and its first item but one
  Desk::Press("Down Down Return");
  ASSERT_TRUE(Desk::TurnTo("10 MAILS .9 NEW MAILS, 1 SPAM MAILS."));
  Desk::Press("ctrl+s");

  EXPECT_EQ(dovecot.Files("kim").size(), 10u);
  Desk::Press("alt+d");
  ASSERT_TRUE(Desk::TurnTo("8 MAILS .[78] NEW MAILS, 0 SPAM MAILS."));
  EXPECT_EQ(dovecot.Files("kim"), wanted);
  Desk::Leave("8 MAILS");

  EXPECT_EQ(Shell(VESKO_HOST " --quit"), 0);
  EXPECT_EQ(first.Wait(), 0);

  Process again(VESKO_HOST " --check");
  ASSERT_TRUE(Desk::TurnTo("8 MAILS .7 NEW MAILS, 0 SPAM MAILS."));
  Desk::Leave("8 MAILS");
  EXPECT_EQ(Shell(VESKO_HOST " --configure"), 0);  // handed to the one that runs
  ASSERT_TRUE(Desk::TurnTo("POP3 Mail Configurarion"));
  Desk::Leave("POP3 Mail Configurarion");
  EXPECT_EQ(Shell(VESKO_HOST " --quit"), 0);
  EXPECT_EQ(again.Wait(), 0);
}

}  // namespace
}  // namespace vesko

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  vesko::EnterPrivateMachine();
  QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
