// vesko-host: watches the user's mailboxes from the desktop's tray. It finds the component by its
// ProgID, as any host does.

#include <sys/signalfd.h>
#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QSocketNotifier>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>

#include "AutomationComponent.h"
#include "SingleInstance.h"
#include "TrayHost.h"

namespace vesko_host {
namespace {

constexpr int kFailed = 1;
constexpr int kBusy = 2;

struct Option {
  const char* word;
  const char* description;
};

constexpr Option kOptions[] = {
    {"check", "Check all mailboxes now."},
    {"view", "Show the messages that were found."},
    {"configure", "Open the settings."},
    {"quit", "End the running instance."},
    {"demo", "Show the component on a built-in server with a sample mailbox."},
};

struct CommandLine {
  QString command;  // one word of kOptions, or empty
  std::optional<int> exit_code;
};

int Print(FILE* stream, const QString& text, int exit_code) {
  std::fputs(text.toLocal8Bit().constData(), stream);
  return exit_code;
}

/// Reads the options without an application object, so that --help needs no display.
CommandLine Parse(const QStringList& arguments) {
  QCommandLineParser parser;
  parser.setApplicationDescription(QStringLiteral(
      "Watches POP3 mailboxes and shows what is new. Without an option it stays in the "
      "notification area."));
  parser.addOption(
      {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Print the options.")});
  parser.addVersionOption();
  for (const Option& option : kOptions) {
    parser.addOption({QString::fromLatin1(option.word), QString::fromLatin1(option.description)});
  }
  if (!parser.parse(arguments)) {
    return {{}, Print(stderr, parser.errorText() + u'\n', kFailed)};
  }
  if (!parser.positionalArguments().isEmpty()) {
    return {{}, Print(stderr, QStringLiteral("Unexpected argument. Try --help.\n"), kFailed)};
  }
  if (parser.isSet(QStringLiteral("help"))) {
    // Without an application object the parser does not know the program's name.
    return {{},
            Print(stdout,
                  parser.helpText().replace(QStringLiteral("<executable_name>"),
                                            QStringLiteral("vesko-host")),
                  0)};
  }
  if (parser.isSet(QStringLiteral("version"))) {
    return {{}, Print(stdout, QStringLiteral("vesko-host " VESKO_VERSION "\n"), 0)};
  }
  for (const Option& option : kOptions) {
    if (parser.isSet(QString::fromLatin1(option.word))) {
      return {QString::fromLatin1(option.word), {}};
    }
  }
  return {};
}

/// Replaces this process by the demonstration, which has a throw-away registry of its own.
int RunDemo() {
  std::error_code ignored;
  const auto own = std::filesystem::read_symlink("/proc/self/exe", ignored);
  const std::string demo = (own.parent_path() / "vesko-demo").string();
  execl(demo.c_str(), demo.c_str(), static_cast<char*>(nullptr));
  execlp("vesko-demo", "vesko-demo", static_cast<char*>(nullptr));
  return Print(stderr, QStringLiteral("vesko-demo is not installed.\n"), kFailed);
}

/// The exit code where an instance is running, which has taken the command or refused it.
std::optional<int> HandOver(int& argc, char** argv, const QString& command) {
  QCoreApplication application(argc, argv);
  const QString path = InstancePath();
  if (path.isEmpty()) return std::nullopt;
  const auto answer = SingleInstance(path).HandOver(command);
  if (!answer) return std::nullopt;
  if (*answer == u"ok") return 0;
  if (*answer == u"busy") {
    return Print(stderr, QStringLiteral("vesko-host is busy. Try again later.\n"), kBusy);
  }
  return Print(stderr, QStringLiteral("The vesko-host that runs does not answer.\n"), kFailed);
}

bool HasDisplay() {
  return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY") ||
         qEnvironmentVariableIsSet("QT_QPA_PLATFORM");
}

/// A descriptor that delivers the signals which end a session, so that the settings can be saved
/// before the program ends.
int TerminationSignals() {
  sigset_t ending;
  sigemptyset(&ending);
  for (int signal : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&ending, signal);
  sigprocmask(SIG_BLOCK, &ending, nullptr);
  return signalfd(-1, &ending, SFD_CLOEXEC | SFD_NONBLOCK);
}

int RunHost(int& argc, char** argv, const QString& command) {
  QApplication application(argc, argv);
  QApplication::setDesktopFileName(QStringLiteral("vesko-host"));
  QApplication::setQuitOnLastWindowClosed(false);

  const auto component = LoadComponent();
  TrayHost host(*component);
  const QString path = InstancePath();
  SingleInstance instance(path);
  if (path.isEmpty() || !instance.Listen([&](const QString& word) { return host.Run(word); })) {
    qWarning("A second vesko-host will not find this one: it has no folder of its own.");
  }

  QSocketNotifier termination(TerminationSignals(), QSocketNotifier::Read);
  QObject::connect(&termination, &QSocketNotifier::activated, &host, [&] {
    termination.setEnabled(false);
    host.Run(QStringLiteral("quit"));
  });

  host.Show();
  host.Run(command);
  return QApplication::exec();
}

int Main(int argc, char** argv) {
  QStringList arguments;
  for (int i = 0; i < argc; ++i) arguments.append(QString::fromLocal8Bit(argv[i]));
  QCoreApplication::setApplicationName(QStringLiteral("vesko-host"));

  const CommandLine line = Parse(arguments);
  if (line.exit_code) return *line.exit_code;
  if (line.command == u"demo") return RunDemo();
  if (const auto handed_over = HandOver(argc, argv, line.command)) return *handed_over;
  if (line.command == u"quit") return 0;
  if (!HasDisplay()) {
    return Print(stderr, QStringLiteral("vesko-host needs a display.\n"), kFailed);
  }
  return RunHost(argc, argv, line.command);
}

}  // namespace
}  // namespace vesko_host

int main(int argc, char** argv) {
  try {
    return vesko_host::Main(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vesko-host: %s\n", error.what());
    return vesko_host::kFailed;
  }
}
