#include <QCoreApplication>
#include <QTimer>
#include <filesystem>

#include "desktop/SocketFixture.h"
#include "desktop/linux/LinuxDesktop.h"

namespace vesko {

std::unique_ptr<Socket> MakeTestSocket(const Locale& locale, const std::string& certificate_file,
                                       std::vector<int32_t> tls_ports) {
  return MakeQtSocket(locale, certificate_file, std::move(tls_ports));
}

bool TurnEventLoop(std::chrono::milliseconds longest_wait) {
  static int count = 1;
  static char name[] = "socket_test";
  static char* arguments[] = {name, nullptr};
  static QCoreApplication application(count, arguments);
  QTimer timer;
  timer.setSingleShot(true);
  timer.start(longest_wait);
  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return timer.isActive();
}

size_t OpenDescriptors() {
  std::filesystem::directory_iterator entries("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

bool SystemTellsResets() { return true; }

}  // namespace vesko
