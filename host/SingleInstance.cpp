#include "SingleInstance.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QTimer>
#include <utility>

namespace vesko_host {

namespace {

constexpr int kLongestLine = 64;  // bytes, of a command and of an answer

/// Whether the process at the other end, as the kernel recorded it when it connected or began to
/// listen, runs for the same user.
bool IsOwnUser(const QLocalSocket& socket) {
  ucred peer = {};
  socklen_t size = sizeof peer;
  const int descriptor = static_cast<int>(socket.socketDescriptor());
  return getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 &&
         peer.uid == geteuid();
}

/// Empty until a whole line is there.
QString TakeLine(QLocalSocket& socket) {
  if (!socket.canReadLine()) return {};
  return QString::fromUtf8(socket.readLine(kLongestLine)).trimmed();
}

bool IsFull(const QLocalSocket& socket) { return socket.bytesAvailable() >= kLongestLine; }

QString CacheFolder() {
  const QString configured = qEnvironmentVariable("XDG_CACHE_HOME");
  return configured.startsWith(u'/') ? configured : QDir::homePath() + QStringLiteral("/.cache");
}

}  // namespace

SingleInstance::SingleInstance(QString path, std::chrono::milliseconds patience)
    : path_(std::move(path)), patience_(patience) {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { Serve(); });
}

std::optional<QString> SingleInstance::HandOver(const QString& command) {
  const QDeadlineTimer deadline(patience_);
  const auto left = [&] { return static_cast<int>(deadline.remainingTime()); };
  QLocalSocket socket;
  socket.setReadBufferSize(kLongestLine);
  socket.connectToServer(path_);
  if (!socket.waitForConnected(left()) || !IsOwnUser(socket)) return std::nullopt;
  socket.write(command.toUtf8() + '\n');
  while (!socket.canReadLine() && !IsFull(socket) && socket.waitForReadyRead(left())) {
  }
  return TakeLine(socket);
}

bool SingleInstance::Listen(std::function<QString(const QString&)> run) {
  run_ = std::move(run);
  if (server_.listen(path_)) return true;
  // Nobody answered HandOver, so the socket was left behind by a process that died.
  QLocalServer::removeServer(path_);
  return server_.listen(path_);
}

void SingleInstance::Serve() {
  QLocalSocket* socket = server_.nextPendingConnection();
  QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  if (!IsOwnUser(*socket)) return socket->abort();
  socket->setReadBufferSize(kLongestLine);
  QTimer::singleShot(patience_, socket, [socket] { socket->abort(); });
  QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
    if (!socket->canReadLine()) {
      if (IsFull(*socket)) socket->abort();
      return;
    }
    socket->write(run_(TakeLine(*socket)).toUtf8() + '\n');
    socket->flush();
    socket->disconnectFromServer();
  });
}

QString PrivateFolder(const QString& parent) {
  const QString folder = parent + QStringLiteral("/vesko-host");
  const QByteArray path = QFile::encodeName(folder);
  mkdir(path.constData(), S_IRWXU);
  struct stat status;
  const bool is_private = lstat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode) &&
                          status.st_uid == geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
  return is_private ? folder : QString();
}

QString InstancePath() {
  const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
  QString folder = runtime.startsWith(u'/') ? PrivateFolder(runtime) : QString();
  if (folder.isEmpty() && QDir().mkpath(CacheFolder())) folder = PrivateFolder(CacheFolder());
  return folder.isEmpty() ? folder : folder + QStringLiteral("/instance");
}

}  // namespace vesko_host
