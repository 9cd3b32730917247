#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>

#include "desktop/linux/LinuxDesktop.h"
#include "support/ErrorOf.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

constexpr char kPop3[] = "type\", \"pop3\"";
constexpr char kDefault[] = "[Default Applications]\nx-scheme-handler/mailto=";

/// A user's folders in a temporary one: conf, data, etc, share, bin, and mail profiles in mail.
class LinuxShellTest : public testing::Test {
 protected:
  std::unique_ptr<Shell> NewShell() const {
    return MakeLinuxShell({folder_ / "nowhere", folder_ / "mail"});
  }

  Text Path(std::string_view name) const { return FromAscii(folder_ / name); }
  void Program(std::string_view name, std::string_view content = "#!/bin/sh\n") {
    folder_.Write(name, content);
    chmod((folder_ / name).c_str(), 0755);
  }
  void Entry(std::string_view name, std::string_view lines) {
    folder_.Write(name, "[Desktop Entry]\nType=Application\n" + std::string(lines) + "\n");
  }
  /// Asks the shell in a process of the user's, because GIO reads the environment only once in a
  /// process. A process that uses the processor for more than five seconds is killed.
  std::string InUsersProcess(const std::function<Text(Shell&)>& ask) const {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
      EnterAccount();
      const Text answer = ask(*MakeLinuxShell());
      const std::string bytes(answer.begin(), answer.end());
      _exit(write(ends[1], bytes.c_str(), bytes.size() + 1) < 0);
    }
    close(ends[1]);
    char answer[4096] = {};
    EXPECT_GT(read(ends[0], answer, sizeof answer - 1), 0);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    return answer;
  }

  void EnterAccount() const {
    const std::pair<const char*, std::string> variables[] = {
        {"HOME", folder_ / "home"},
        {"XDG_CONFIG_HOME", folder_ / "conf"},
        {"XDG_DATA_HOME", folder_ / "data"},
        {"XDG_CONFIG_DIRS", folder_ / "etc"},
        {"XDG_DATA_DIRS", folder_ / "flatpak/share" + ":" + folder_ / "share/"},
        {"PATH", "relative:" + folder_ / "none" + ":" + folder_ / "bin"},
        {"XDG_CURRENT_DESKTOP", "Other:KDE"},
    };
    for (const auto& [name, value] : variables) setenv(name, value.c_str(), 1);
    for (const std::string& name : unset_) unsetenv(name.c_str());
    const rlimit seconds = {5, 5};
    setrlimit(RLIMIT_CPU, &seconds);
  }

  /// The client's path below the temporary folder.
  std::string Client() const {
    const auto client = InUsersProcess([](Shell& shell) { return shell.DesktopMailClient(); });
    return client.substr(client.empty() ? 0 : folder_.Path().size() + 1);
  }

  /// A line per account: name|server|user|port.
  std::string Accounts() {
    auto shell = NewShell();
    Text lines;
    for (int32_t k = 1; auto account = shell->DesktopMailAccount(k); ++k) {
      lines += account->name + u"|" + account->server + u"|" + account->user + u"|" +
               Decimal(account->port) + u"\n";
    }
    EXPECT_FALSE(shell->DesktopMailAccount(0));
    return std::string(lines.begin(), lines.end());
  }
  void Preferences(const std::string& lines) {
    folder_.Write("mail/profiles.ini", "[Profile0]\nIsRelative=1\nPath=p\n");
    folder_.Write("mail/p/prefs.js", lines);
  }
  /// Preferences of accounts on servers s1, s2, …, each line given without its prefix.
  static std::string Server(int n, const std::vector<std::string>& lines) {
    std::string id = std::to_string(n);
    std::string text = "user_pref(\"mail.account.a" + id + ".server\", \"s" + id + "\");\n";
    for (const std::string& line : lines) {
      text += "user_pref(\"mail.server.s" + id + "." + line + ");\n";
    }
    return text;
  }
  static std::string AccountList(const std::string& list) {
    return "user_pref(\"mail.accountmanager.accounts\", \"" + list + "\");\n";
  }

  TempFolder folder_;
  std::vector<std::string> unset_;  // variables that the user's process lacks
};

TEST_F(LinuxShellTest, WhatItStartsIsNoChildToWaitFor) {
  Program("client");
  NewShell()->Start(Path("client"));
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(LinuxShellTest, RefusesScriptsWithoutAnInterpreter) {
  Program("no interpreter", "touch " + folder_ / "by-shell");
  Program("lost", "#!/nowhere/interpreter\n");
  for (auto* name : {"no interpreter", "lost"}) {
    EXPECT_EQ(ErrorOf([&] { NewShell()->Start(Path(name)); }), 53) << name;
  }
  EXPECT_FALSE(std::filesystem::exists(folder_ / "by-shell"));
}

TEST_F(LinuxShellTest, MailClientIsTheFirstUsableOfThoseNamed) {
  Program("bin/one");
  Program("bin/two");
  EXPECT_EQ(Client(), "");
  Entry("share/applications/one.desktop", "Exec=one %u");
  Entry("share/applications/sub/two.desktop", "Exec=two");
  Entry("share/applications/gone.desktop", "Exec=gone");
  Entry("share/applications/odd.desktop", "Exec=env --debug one");
  const struct {
    const char *file, *section, *names, *client;
  } rows[] = {
      // Each stands before those that were written before it.
      {"share/applications/mimeinfo.cache", "MIME Cache", "one.desktop;", "bin/one"},
      {"share/applications/mimeapps.list", "Added Associations", "odd.desktop;sub-two.desktop;",
       "bin/two"},
      {"etc/mimeapps.list", "Default Applications", "one.desktop", "bin/one"},
      {"conf/mimeapps.list", "Default Applications", "missing.desktop;gone.desktop;sub-two.desktop",
       "bin/two"},
      {"conf/kde-mimeapps.list", "Default Applications", "one.desktop", "bin/one"},
      {"conf/kde-mimeapps.list", "Default Applications", "odd.desktop", "bin/two"},
  };
  for (const auto& [file, section, names, client] : rows) {
    folder_.Write(file, "[" + std::string(section) + "]\ntext/html=one.desktop\n" +
                            "x-scheme-handler/mailto=" + names + "\n");
    EXPECT_EQ(Client(), client) << file << " " << names;
  }
}

TEST_F(LinuxShellTest, ProgramOfADesktopEntry) {
  for (const char* name :
       {"bin/mail", "my \"mail\"", "bin/flatpak", "bin/env", "flatpak/bin/org.mail.App"}) {
    Program(name);
  }
  folder_.Write("bin/document", "x");
  const std::string at = folder_ / "";
  const std::pair<std::string, const char*> rows[] = {
      {"Exec=mail", "bin/mail"},
      {"Exec=\"" + at + "my \\\\\"mail\\\\\"\" %U", "my \"mail\""},
      {"Exec=env A=1 B=x=y mail %u", "bin/mail"},
      {"Exec=" + at + "bin/flatpak run --branch=x org.mail.App @@u %u @@",
       "flatpak/bin/org.mail.App"},
      {"TryExec=missing\nExec=mail", ""},
      {"Exec=env -u A mail", ""},
      {"Exec=%u", ""},
      {"Exec=" + at + "bin", ""},
      {"Exec=document", ""},
      {"Exec=../bin/mail", ""},
      {"Exec=\"\\\\", ""},
  };
  folder_.Write("conf/mimeapps.list", kDefault + std::string("org.mail.App.desktop"));
  for (const auto& [lines, client] : rows) {
    Entry("flatpak/share/applications/org.mail.App.desktop", lines);
    EXPECT_EQ(Client(), client) << lines;
  }
  Entry("outside.desktop", "Exec=mail");
  for (const std::string name : {"../../outside.desktop", "..-..-outside", "..-..-outside.txt"}) {
    folder_.Write("conf/mimeapps.list", kDefault + name);
    EXPECT_EQ(Client(), "") << name;
  }
}

TEST_F(LinuxShellTest, TheUsersFoldersAreThoseOfTheEnvironment) {
  Program("bin/mail");
  folder_.Write("home/.config/mimeapps.list", kDefault + std::string("mail.desktop\n"));
  Entry("home/.local/share/applications/mail.desktop", "Exec=mail");
  EXPECT_EQ(Client(), "") << "the variables name other folders";
  unset_ = {"XDG_CONFIG_HOME"};
  EXPECT_EQ(Client(), "") << "the entry is not in them";
  unset_ = {"XDG_CONFIG_HOME", "XDG_DATA_HOME"};
  EXPECT_EQ(Client(), "bin/mail");

  folder_.Write("home/.thunderbird/profiles.ini", "[Profile0]\nPath=p\n");
  folder_.Write("home/.thunderbird/p/prefs.js",
                AccountList("a1") + Server(1, {kPop3, "hostname\", \"h\""}));
  EXPECT_EQ(InUsersProcess([](Shell& shell) { return shell.DesktopMailAccount(1)->server; }), "h");
}

TEST_F(LinuxShellTest, AHugeListOfProgramsTakesNoTime) {
  Program("bin/mail");
  Entry("data/applications/mail.desktop", "Exec=mail");
  std::string list = std::string(1 << 20, '-') + ".desktop;";
  for (int i = 0; i < 50'000; ++i) list += "a-b-c-d.desktop;";
  folder_.Write("conf/mimeapps.list", kDefault + list + "mail.desktop\n");
  EXPECT_EQ(Client(), "bin/mail");
}

TEST_F(LinuxShellTest, ImportsPop3AccountsInTheirOrder) {
  Preferences("// Mozilla User Preferences\n\n" + AccountList("a2,a1, a3,,a9,a4") +
              Server(1, {kPop3, "hostname\", \"pop.example\"", "userName\", \"me\""}) +
              Server(2, {kPop3, "hostname\", \"old\"", "realhostname\", \"new\"",
                         "userName\", \"old\"", "realuserName\", \"new\"", "port\", 2110",
                         "name\", \"Na\\\"me\\u0021\"", "password\", \"secret\""}) +
              Server(3, {"type\", \"imap\"", "hostname\", \"imap.example\""}) +
              Server(4, {kPop3, "hostname\", \"tls\"", "socketType\", 3"}));
  EXPECT_EQ(Accounts(),
            "Na\"me!|new|new|2110\n"
            "me@pop.example|pop.example|me|110\n"
            "tls|tls||995\n");
}

TEST_F(LinuxShellTest, ForeignPreferencesAreNotTrusted) {
  const std::string host = "|h||110\n";
  // Lines of server 1, which has a type and a host already, and the accounts.
  const std::pair<std::string, std::string> rows[] = {
      {"userName\", \"u\\r\\nDELE 1\\x00\\u0085\"", "uDELE 1@h|h|uDELE 1|110\n"},
      {"port\", 65536", "h" + host},
      {"port\", 99999999999", "h" + host},
      {"name\", \"unclosed", "h" + host},
      {"name\", \"\\u12\"", "h" + host},
      {"name\", \"\\uD800\"", "?" + host},
      {"name\", \"" + std::string(5000, 'n') + "\"", "h" + host},
      {"name\", ", "h" + host},
      {"hostname\", \" \\n \"", ""},
  };
  for (const auto& [lines, accounts] : rows) {
    Preferences(AccountList("a1") + Server(1, {kPop3, "hostname\", \"h\"", lines}));
    EXPECT_EQ(Accounts(), accounts) << lines;
  }
}

TEST_F(LinuxShellTest, HugeAndBrokenProfilesAreLeftOut) {
  const std::string good = AccountList("a1") + Server(1, {kPop3, "hostname\", \"h\""});
  std::string many;
  for (int i = 0; i < 100'000; ++i) many += "a1,";
  for (const std::string& content :
       {std::string(300'000, '('),
        std::string("user_pref(\"mail.accountmanager.accounts\", \"a1\""),
        std::string(17 << 20, '\n') + good, AccountList(many) + good.substr(good.find('\n'))}) {
    Preferences(content);
    EXPECT_EQ(Accounts(), "") << content.size();
  }
  Preferences(good);
  folder_.Write("mail/profiles.ini", std::string(200'000, '[') + "\n[Profile0]\nPath=/dev/zero\n" +
                                         "[Profile0]\nPath=../../../../dev\n[x]\nPath=p\n");
  EXPECT_EQ(Accounts(), "h|h||110\n");
}

TEST_F(LinuxShellTest, TheProfileInUseIsTheOneImported) {
  for (std::string name : {"a", "b", "c"}) {
    folder_.Write("mail/" + name + "/prefs.js",
                  AccountList("a1") + Server(1, {kPop3, "hostname\", \"" + name + "\""}));
  }
  const std::string others =
      "[Profile1]\nIsRelative=1\nPath=a\n\n[Profile0]\nIsRelative=0\nPath=" + folder_ / "mail/b" +
      "\n";
  const std::pair<std::string, const char*> rows[] = {
      {others + "Default=1\n", "b"},
      {others + "Default=1\n[Install123]\nDefault=c\nLocked=1\n", "c"},
      {others + "[Install123]\nDefault=missing\n", "a"}};
  for (const auto& [ini, name] : rows) {
    folder_.Write("mail/profiles.ini", ini);
    EXPECT_EQ(Accounts(), std::string(name) + "|" + name + "||110\n") << ini;
  }
}

}  // namespace
}  // namespace vesko
