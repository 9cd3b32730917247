#pragma once

#include <QLocalServer>
#include <QString>
#include <chrono>
#include <functional>
#include <optional>

namespace vesko_host {

/// One instance per user. The first listens on a socket in a folder that only the user can reach; a
/// second one hands its command over and ends. Whoever is at the other end must be a process of the
/// same user, and is given up when it sends more than a line or takes too long over it.
class SingleInstance {
 public:
  /// `path` is the socket's; `patience` is for a whole exchange.
  explicit SingleInstance(QString path,
                          std::chrono::milliseconds patience = std::chrono::seconds(3));

  /// Hands the command to the running instance and returns its answer, which is empty where none
  /// came in time. Nothing where no instance of this user runs.
  std::optional<QString> HandOver(const QString& command);

  /// Becomes the first instance; `run` answers each command that arrives. A socket left behind by a
  /// process that died is replaced. False where the socket cannot be opened.
  bool Listen(std::function<QString(const QString& command)> run);

 private:
  void Serve();

  QString path_;
  std::chrono::milliseconds patience_;
  QLocalServer server_;
  std::function<QString(const QString&)> run_;
};

/// Makes the folder "vesko-host" in `parent`, or takes the one that is there, and returns its path.
/// Empty unless it is a folder (and no link) that belongs to this user and has mode 0700: others
/// may have put a socket of their own into one that they can reach.
QString PrivateFolder(const QString& parent);

/// The socket's path for the user of this process: in the folder for run-time files, or where that
/// is missing or not safe in the one for caches. Empty where neither will do.
QString InstancePath();

}  // namespace vesko_host
