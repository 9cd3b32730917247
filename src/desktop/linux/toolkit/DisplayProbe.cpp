#include "desktop/linux/toolkit/DisplayProbe.h"

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>
#include <algorithm>
#include <cstring>

namespace vesko {
namespace {

QStringList PluginFolders() {
  QStringList folders;
  for (const QString& path : QCoreApplication::libraryPaths()) folders << path + "/platforms";
  const QString more = qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH");
  if (!more.isEmpty()) folders << more;
  return folders;
}

bool HasPlatformPlugin(const QString& platform) {
  for (const QString& folder : PluginFolders()) {
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files)) {
      const QJsonObject data = QPluginLoader(file.filePath()).metaData();
      if (data["MetaData"]["Keys"].toArray().contains(platform)) return true;
    }
  }
  return false;
}

/// Asks the X library, which knows best how to reach a display and how to authenticate there. The
/// library is loaded at run time, as Qt's plugin loads it: a desktop without X need not have it.
bool ReachesXServer() {
  void* library = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return false;
  const auto connect =
      reinterpret_cast<void* (*)(const char*, int*)>(dlsym(library, "xcb_connect"));
  const auto has_error =
      reinterpret_cast<int (*)(void*)>(dlsym(library, "xcb_connection_has_error"));
  const auto disconnect = reinterpret_cast<void (*)(void*)>(dlsym(library, "xcb_disconnect"));
  bool reached = false;
  if (connect != nullptr && has_error != nullptr && disconnect != nullptr) {
    void* connection = connect(nullptr, nullptr);
    reached = has_error(connection) == 0;
    disconnect(connection);
  }
  dlclose(library);
  return reached;
}

bool ReachesWaylandServer() {
  if (qEnvironmentVariableIsSet("WAYLAND_SOCKET")) return true;
  const QByteArray name = qgetenv("WAYLAND_DISPLAY");
  if (name.isEmpty()) return false;
  const QByteArray path = name.startsWith('/') ? name : qgetenv("XDG_RUNTIME_DIR") + '/' + name;
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) return false;
  std::memcpy(address.sun_path, path.data(), static_cast<size_t>(path.size()));
  const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (descriptor < 0) return false;
  const bool reached =
      connect(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  close(descriptor);
  return reached;
}

bool CanShowWindowsOn(const QString& platform) {
  if (!HasPlatformPlugin(platform)) return false;
  if (platform == "xcb") return ReachesXServer();
  if (platform.startsWith("wayland")) return ReachesWaylandServer();
  return true;  // offscreen and the like need no server
}

}  // namespace

bool CanShowWindows() {
  QStringList platforms = {"wayland", "xcb"};
  const QString asked = qEnvironmentVariable("QT_QPA_PLATFORM");
  if (!asked.isEmpty()) platforms = asked.split(';', Qt::SkipEmptyParts);
  return std::any_of(platforms.begin(), platforms.end(), [](const QString& platform) {
    return CanShowWindowsOn(platform.section(':', 0, 0));  // arguments follow the colon
  });
}

}  // namespace vesko
