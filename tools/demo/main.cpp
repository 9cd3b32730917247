#include <QApplication>
#include <QCommandLineParser>
#include <QLoggingCategory>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>

#include "component/ComponentState.h"
#include "component/cVeskoEx.h"
#include "config/mRegistry.h"
#include "config/mmEncrypt.h"
#include "demo/MailTable.h"
#include "demo/Onlooker.h"
#include "demo/Password.h"
#include "demo/Pop3Server.h"
#include "demo/SampleMailbox.h"
#include "demo/ThrowAwayFolder.h"
#include "desktop/linux/LinuxDesktop.h"

namespace vesko::demo {
namespace {

using namespace std::chrono_literals;

// Makes a check of the built-in server last long enough to be seen.
constexpr auto kAnswerDelay = 40ms;

constexpr const char* kSamplePassword = "sample";

struct DemoAccount {
  Text name;
  Text server;
  Text user;
  Text password;
  int32_t port = kPop3Port;
  bool save_password = false;
};

struct Options {
  QString server;  // empty: the built-in one
  int port = kPop3Port;
  QString user;
  QString picture_folder;  // empty: no pictures
};

[[noreturn]] void Refuse(const QString& why) {
  std::cerr << why.toStdString() << "\nvesko-demo --help tells more.\n";
  std::exit(2);
}

Options ReadOptions(bool has_display) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      "Shows a check of two sample mailboxes on a built-in POP3 server, or of a real one.\n"
      "Settings live in a folder that is removed at the end.\n"
      "Without a display it takes pictures of the windows and prints the list.");
  parser.addHelpOption();
  parser.addOption({"server", "Check a real POP3 server; the password is asked for.", "HOST"});
  parser.addOption({"port", "Its port, 110 by default; 995 is POP3 over TLS.", "N", "110"});
  parser.addOption({"user", "User name on it.", "NAME"});
  parser.addOption(
      {"pictures", "Folder for the pictures, ./demo-pictures by default.", "DIR", "demo-pictures"});
  parser.process(*QCoreApplication::instance());

  bool is_number = false;
  Options options{parser.value("server"), parser.value("port").toInt(&is_number),
                  parser.value("user"), has_display ? QString() : parser.value("pictures")};
  if (!parser.positionalArguments().isEmpty()) {
    Refuse("What is \"" + parser.positionalArguments().first() + "\"?");
  }
  if (!is_number || options.port < 1 || options.port > 65535) {
    Refuse("--port needs a number from 1 to 65535.");
  }
  if (options.server.isEmpty() != options.user.isEmpty()) {
    Refuse("--server and --user belong together.");
  }
  return options;
}

std::unique_ptr<Pop3Server> StartSampleServer() {
  std::vector<Pop3Account> accounts;
  for (const char* user : kSampleUsers) {
    accounts.push_back({user, kSamplePassword, SampleMessages(user)});
  }
  Pop3Faults faults;
  faults.answer_delay = kAnswerDelay;
  return std::make_unique<Pop3Server>(std::move(accounts), faults);
}

std::vector<DemoAccount> SampleAccounts(uint16_t port) {
  std::vector<DemoAccount> accounts;
  for (const char* user : kSampleUsers) {
    accounts.push_back(
        {FromAscii(user), u"127.0.0.1", FromAscii(user), FromAscii(kSamplePassword), port, true});
  }
  return accounts;
}

DemoAccount AskForAccount(const Options& options) {
  DemoAccount account{options.server.toStdU16String(), options.server.toStdU16String(),
                      options.user.toStdU16String(), Text(), options.port};
  const QString prompt = "Password of " + options.user + " on " + options.server + ": ";
  account.password = QString::fromStdString(AskPassword(prompt.toStdString())).toStdU16String();
  if (account.password.empty()) Refuse("No password, no check.");
  return account;
}

void SetAccounts(Configuration& configuration, const std::vector<DemoAccount>& accounts,
                 const Locale& locale) {
  configuration.Accounts.Clear();
  for (const DemoAccount& account : accounts) {
    configuration.AddAccount({account.name, account.server, account.user,
                              Encrypt(account.password, locale), Decimal(account.port),
                              account.save_password ? u"1" : u"0"});
  }
}

// Stores the accounts before the first start, which would import those of the user's mail program.
void SeedRegistry(Desktop& desktop, const std::vector<DemoAccount>& accounts) {
  const Services& services = desktop.GetServices();
  mRegistry store(services.registry, services.locale, services.shell);
  Configuration configuration;
  store.Load(configuration);
  SetAccounts(configuration, accounts, services.locale);
  store.Save(configuration);
}

int Run(const Options& options, bool has_display) {
  std::unique_ptr<Pop3Server> server;
  if (options.server.isEmpty()) server = StartSampleServer();
  const auto accounts =
      server ? SampleAccounts(server->Port()) : std::vector{AskForAccount(options)};

  ThrowAwayFolder folder;
  LinuxDesktopOptions places;
  places.user_hive_folder = folder.Path() + "/user";
  places.machine_hive_folder = folder.Path() + "/machine";
  auto desktop = MakeLinuxDesktop(places);
  SeedRegistry(*desktop, accounts);

  ComponentState state(*desktop);
  cVeskoEx component(state);
  // A password typed for a real server is never stored, so the component does not find it.
  SetAccounts(state.data.configuration, accounts, desktop->GetServices().locale);

  std::optional<Onlooker> onlooker;
  if (!has_display) onlooker.emplace(options.picture_folder);
  component.CheckMail();
  if (state.data.mails.Count() > 0) PrintTable(std::cout, state.data.mails);
  return onlooker && onlooker->SawTrouble() ? 1 : 0;
}

bool HasDisplay() {
  return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

int Main(int argc, char** argv) {
  if (!HasDisplay() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Silences Qt's warnings about what it cannot do without a display.
    QLoggingCategory::setFilterRules("default.warning=false");
  }
  QApplication application(argc, argv);
  application.setApplicationName("vesko-demo");
  const bool has_display = QGuiApplication::platformName() != "offscreen";
  return Run(ReadOptions(has_display), has_display);
}

}  // namespace
}  // namespace vesko::demo

int main(int argc, char** argv) {
  try {
    return vesko::demo::Main(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "vesko-demo: " << error.what() << '\n';
    return 1;
  }
}
