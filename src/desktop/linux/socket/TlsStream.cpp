#include "desktop/linux/socket/TlsStream.h"

#include <QSslCertificate>
#include <QSslError>
#include <utility>

#include "desktop/common/SocketMessages.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

CertificateFault FaultOf(QSslError::SslError error) {
  switch (error) {
    case QSslError::CertificateExpired:
      return CertificateFault::kExpired;
    case QSslError::CertificateNotYetValid:
      return CertificateFault::kNotYetValid;
    case QSslError::HostNameMismatch:
      return CertificateFault::kOtherHost;
    case QSslError::SelfSignedCertificate:
      return CertificateFault::kSelfSigned;
    case QSslError::SelfSignedCertificateInChain:
    case QSslError::UnableToGetIssuerCertificate:
    case QSslError::UnableToGetLocalIssuerCertificate:
    case QSslError::UnableToVerifyFirstCertificate:
    case QSslError::CertificateUntrusted:
      return CertificateFault::kUnknownAuthority;
    case QSslError::CertificateRevoked:
    case QSslError::CertificateBlacklisted:
      return CertificateFault::kWithdrawn;
    case QSslError::InvalidPurpose:
      return CertificateFault::kWrongPurpose;
    default:
      return CertificateFault::kOther;
  }
}

// How the TLS library says that the server's first bytes are no TLS at all.
bool IsAboutPlainText(const QString& reason) {
  return reason.contains(u"wrong version number") || reason.contains(u"packet length too long") ||
         reason.contains(u"http request");
}

}  // namespace

QSslConfiguration TlsClientConfiguration(const QString& certificate_file) {
  QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
  configuration.setProtocol(QSsl::TlsV1_2OrLater);
  configuration.setPeerVerifyMode(QSslSocket::VerifyPeer);
  QList<QSslCertificate> authorities = QSslConfiguration::systemCaCertificates();
  if (!certificate_file.isEmpty()) authorities += QSslCertificate::fromPath(certificate_file);
  configuration.setCaCertificates(authorities);
  return configuration;
}

// The signals are queued: a listener may then destroy the stream, which a QSslSocket that is in the
// middle of its own work would not survive, and Send never reports anything from within.
template <typename Signal, typename Slot>
void TlsStream::OnSignal(QObject& context, Signal signal, Slot slot) {
  auto call = [slot, alive = std::weak_ptr(alive_)](auto&&... arguments) {
    if (!alive.expired()) slot(arguments...);
  };
  QObject::connect(&socket_, signal, &context, std::move(call), Qt::QueuedConnection);
}

TlsStream::TlsStream(int fd, const QString& host, const QSslConfiguration& configuration,
                     QObject& context, ByteStreamListener& listener)
    : listener_(listener), host_(host) {
  OnSignal(context, &QSslSocket::encrypted, [this] {
    open_ = true;
    listener_.Opened();
  });
  OnSignal(context, &QSslSocket::readyRead, [this] { Read(); });
  OnSignal(context, &QSslSocket::disconnected, [this] { Disconnected(); });
  OnSignal(context, &QSslSocket::errorOccurred,
           [this](QAbstractSocket::SocketError error) { SocketFailed(error); });
  socket_.setSslConfiguration(configuration);
  socket_.setSocketDescriptor(fd);
  socket_.setPeerVerifyName(host);
  socket_.startClientEncryption();
}

TlsStream::~TlsStream() {
  alive_.reset();
  socket_.abort();
}

void TlsStream::Send(std::string_view bytes) {
  socket_.write(bytes.data(), static_cast<qint64>(bytes.size()));
}

void TlsStream::Read() {
  const QByteArray bytes = socket_.readAll();
  if (bytes.isEmpty()) return;
  listener_.BytesArrived({bytes.constData(), static_cast<size_t>(bytes.size())});
}

void TlsStream::Disconnected() {
  if (std::exchange(over_, true)) return;
  listener_.PeerClosed();
}

void TlsStream::SocketFailed(QAbstractSocket::SocketError error) {
  if (open_ && error == QAbstractSocket::RemoteHostClosedError) return;  // Disconnected follows
  if (std::exchange(over_, true)) return;
  if (!open_) return listener_.Failed(kSocketConnectionAborted, HandshakeWords(error));
  listener_.Failed(kSocketConnectionReset, SocketErrorText(kSocketConnectionReset));
}

Text TlsStream::HandshakeWords(QAbstractSocket::SocketError error) const {
  if (!socket_.sslHandshakeErrors().isEmpty()) return CertificateWords();
  if (error == QAbstractSocket::RemoteHostClosedError) {
    return Text(kClosedInHandshakeWords);
  }
  return Text(IsAboutPlainText(socket_.errorString()) ? kNoTlsWords : kNoCommonTlsWords);
}

Text TlsStream::CertificateWords() const {
  Text words = RefusedCertificateText(host_.toStdU16String());
  for (const QSslError& error : socket_.sslHandshakeErrors()) {
    const TextView reason = CertificateFaultWords(FaultOf(error.error()));
    if (!Contains(words, reason)) words.append(u" ").append(reason);
  }
  return words;
}

}  // namespace vesko
