#pragma once

#include <QLocalServer>
#include <QString>
#include <functional>
#include <optional>

namespace vesko_host {

/// One instance per user. The first listens on a socket that only the user may open; a second one
/// hands its command over and ends.
class SingleInstance {
 public:
  /// `name` tells instances of different users apart.
  explicit SingleInstance(QString name);

  /// Hands the command to the instance that runs; its answer, or nothing where none runs.
  std::optional<QString> HandOver(const QString& command);

  /// Becomes the first instance; `run` answers each command that arrives. False where the socket
  /// cannot be opened.
  bool Listen(std::function<QString(const QString& command)> run);

 private:
  void Serve();

  QString name_;
  QLocalServer server_;
  std::function<QString(const QString&)> run_;
};

/// The name for the user of this process.
QString InstanceName();

}  // namespace vesko_host
