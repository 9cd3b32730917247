#include "desktop/linux/toolkit/QtIcons.h"

#include <QString>
#include <array>

// The resources are in a static library, where they would be left out otherwise.
static void LoadImages() { Q_INIT_RESOURCE(images); }

namespace vesko {
namespace {

QIcon LoadIcon(std::string_view name) {
  QIcon icon;
  const auto key = QLatin1String(name.data(), static_cast<qsizetype>(name.size()));
  for (const int size : kIconSizes) {
    icon.addFile(QStringLiteral(":/vesko/%1-%2.png").arg(key).arg(size), QSize(size, size));
  }
  return icon;
}

std::array<QIcon, std::size(kMailStateNames)> LoadIcons() {
  LoadImages();
  std::array<QIcon, std::size(kMailStateNames)> icons;
  for (size_t i = 0; i < icons.size(); ++i) icons[i] = LoadIcon(kMailStateNames[i]);
  return icons;
}

}  // namespace

const QIcon& StateIcon(MailState state) {
  static const auto kIcons = LoadIcons();
  return kIcons[static_cast<size_t>(state)];
}

}  // namespace vesko
