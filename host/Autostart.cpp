#include "Autostart.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStandardPaths>
#include <QString>

namespace vesko_host {

namespace {

QString EntryFolder() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/autostart");
}

QString EntryFile() { return EntryFolder() + QStringLiteral("/vesko-host.desktop"); }

}  // namespace

bool AutostartIsOn() { return QFile::exists(EntryFile()); }

bool SetAutostart(bool on) {
  if (!on) return QFile::remove(EntryFile()) || !AutostartIsOn();
  QFile entry(QStringLiteral(":/vesko-host-autostart.desktop"));
  QSaveFile file(EntryFile());
  return QDir().mkpath(EntryFolder()) && entry.open(QIODevice::ReadOnly) &&
         file.open(QIODevice::WriteOnly) && file.write(entry.readAll()) > 0 && file.commit();
}

}  // namespace vesko_host
