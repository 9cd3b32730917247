#pragma once

#include <QObject>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QString>
#include <memory>
#include <string_view>

#include "desktop/common/ByteStream.h"

namespace vesko {

/// What a client accepts: TLS 1.2 or later, and a certificate that leads to one of the system's
/// authorities or to one in the PEM file (empty or unreadable: none).
QSslConfiguration TlsClientConfiguration(const QString& certificate_file);

/// TLS over a connected TCP socket (RFC 8446). Opened comes when the certificate chain and the host
/// name are checked; nothing is sent before but the handshake. May be destroyed in a listener call.
class TlsStream final : public ByteStream {
 public:
  /// Takes `fd`, names `host` to the server (SNI) and checks the certificate against it. `context`
  /// and the listener must outlive the stream.
  TlsStream(int fd, const QString& host, const QSslConfiguration& configuration, QObject& context,
            ByteStreamListener& listener);
  ~TlsStream() override;

  void Send(std::string_view bytes) override;

 private:
  template <typename Signal, typename Slot>
  void OnSignal(QObject& context, Signal signal, Slot slot);
  void Read();
  void Disconnected();
  void SocketFailed(QAbstractSocket::SocketError error);
  Text HandshakeWords(QAbstractSocket::SocketError error) const;
  Text CertificateWords() const;

  ByteStreamListener& listener_;
  QString host_;
  bool open_ = false;
  bool over_ = false;                                       // its end is reported
  std::shared_ptr<char> alive_ = std::make_shared<char>();  // dies with the stream
  QSslSocket socket_;
};

}  // namespace vesko
