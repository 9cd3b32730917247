#include "SingleInstance.h"

#include <unistd.h>

#include <QLocalSocket>
#include <QStandardPaths>
#include <utility>

namespace vesko_host {

namespace {
constexpr int kAnswerTime = 3000;    // milliseconds
constexpr int kLongestCommand = 64;  // bytes
}  // namespace

SingleInstance::SingleInstance(QString name) : name_(std::move(name)) {
  server_.setSocketOptions(QLocalServer::UserAccessOption);
  QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { Serve(); });
}

std::optional<QString> SingleInstance::HandOver(const QString& command) {
  QLocalSocket socket;
  socket.connectToServer(name_);
  if (!socket.waitForConnected(kAnswerTime)) return std::nullopt;
  socket.write(command.toUtf8() + '\n');
  while (!socket.canReadLine() && socket.waitForReadyRead(kAnswerTime)) {
  }
  return QString::fromUtf8(socket.readLine()).trimmed();
}

bool SingleInstance::Listen(std::function<QString(const QString&)> run) {
  run_ = std::move(run);
  if (server_.listen(name_)) return true;
  // Nobody answered HandOver, so what stands there is left from a process that died.
  QLocalServer::removeServer(name_);
  return server_.listen(name_);
}

void SingleInstance::Serve() {
  QLocalSocket* socket = server_.nextPendingConnection();
  QObject::connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
  QObject::connect(socket, &QLocalSocket::readyRead, socket, [this, socket] {
    if (socket->bytesAvailable() > kLongestCommand) return socket->abort();
    if (!socket->canReadLine()) return;
    const QString command = QString::fromUtf8(socket->readLine()).trimmed();
    socket->write(run_(command).toUtf8() + '\n');
    socket->flush();
    socket->disconnectFromServer();
  });
}

QString InstanceName() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  const QString name = QStringLiteral("vesko-host-%1").arg(getuid());
  return folder.isEmpty() ? name : folder + u'/' + name;
}

}  // namespace vesko_host
