#include "desktop/linux/toolkit/QtIcons.h"

#include <QFile>
#include <map>

// The resources stand in a static library, where they would otherwise be left out.
static void LoadImages() { Q_INIT_RESOURCE(images); }

namespace vesko {
namespace {

QIcon LoadIcon(const std::string& key) {
  QIcon icon;
  for (const int size : kIconSizes) {
    const QString file =
        QStringLiteral(":/vesko/%1-%2.png").arg(QString::fromStdString(key)).arg(size);
    if (QFile::exists(file)) icon.addFile(file, QSize(size, size));
  }
  return icon;
}

}  // namespace

const QIcon& StateIcon(const std::string& key) {
  static std::map<std::string, QIcon> icons;
  auto found = icons.find(key);
  if (found == icons.end()) {
    LoadImages();
    found = icons.emplace(key, LoadIcon(key)).first;
  }
  return found->second;
}

}  // namespace vesko
