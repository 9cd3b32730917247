// Many checks in one process, each with its windows: what memory and descriptors do meanwhile.

#include <unistd.h>

#include <QApplication>
#include <QPushButton>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "demo/Pop3Server.h"
#include "e2e/Machine.h"

namespace {

/// Megabytes of memory that the process holds.
double Resident() {
  long pages = 0;
  long total = 0;
  std::ifstream("/proc/self/statm") >> total >> pages;
  return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

long Descriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return std::distance(begin(all), end(all));
}

/// Closes every list window and message box as soon as it is there.
void CloseWindows() {
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->isVisible() && window->objectName() != "fCheckMail") window->close();
  }
}

std::vector<std::string> Mailbox() {
  std::vector<std::string> messages;
  for (int i = 1; i <= 50; ++i) {
    messages.push_back("From: someone <a@b.example>\r\nSubject: number " + std::to_string(i) +
                       "\r\nMessage-ID: <" + std::to_string(i) +
                       "@soak.example>\r\nDate: Mon, 5 Oct 2026 09:12:44 +0900\r\n\r\nBody\r\n");
  }
  return messages;
}

void Report(int checks) {
  std::printf("%5d checks: resident %6.1f MB, descriptors %ld, windows %lld\n", checks, Resident(),
              Descriptors(), static_cast<long long>(QApplication::topLevelWidgets().size()));
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QApplication application(argc, argv);
  const int checks = argc > 1 ? std::atoi(argv[1]) : 1000;
  vesko::demo::Pop3Server server({{"kim", "secret", Mailbox()}});
  vesko::Machine machine;
  machine.SetUp({{u"kim", u"secret", server.Port()}});
  auto session = machine.NewSession();
  QTimer closer;
  QObject::connect(&closer, &QTimer::timeout, CloseWindows);
  closer.start(1);
  for (int i = 1; i <= checks; ++i) {
    session.component.CheckMail();
    if (i == 1 || i % (checks / 10) == 0) Report(i);
  }
}
