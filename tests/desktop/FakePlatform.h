#pragma once

#include <QObject>

/// What a search for Qt's platforms sees of a plugin for Wayland, which not every machine has.
class FakePlatform : public QObject {
  Q_OBJECT
  Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QPA.QPlatformIntegrationFactoryInterface.5.3" FILE
                        "FakePlatform.json")
};
