#pragma once

#include <QHostAddress>
#include <QList>
#include <QSocketNotifier>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "desktop/common/ByteStream.h"

namespace vesko {

/// A plain TCP connection, reusable. A turn of the event loop costs one read and no copy, which is
/// what a check of many small replies lives on. Must not be destroyed from within a listener call.
class TcpStream final : public ByteStream {
 public:
  /// The listener must outlive the stream.
  explicit TcpStream(ByteStreamListener& listener);
  ~TcpStream() override { Close(); }
  TcpStream(const TcpStream&) = delete;
  TcpStream& operator=(const TcpStream&) = delete;

  /// Tries the addresses in order until one accepts, with the system's time-outs; reports the
  /// outcome. `local_port` 0 is any. To be called by the event loop, with the stream closed: a
  /// failure is reported at once.
  void Open(const QList<QHostAddress>& addresses, uint16_t port, uint16_t local_port);

  /// Hands the connected descriptor over to the caller; the stream is closed then.
  int Release();

  /// Drops the connection and all that waits.
  void Close();

  void Send(std::string_view bytes) override;

 private:
  void TryNextAddress();
  bool StartConnecting(const QHostAddress& address);
  bool ConnectFailed(int error);
  void Readable();
  void Writable();
  void FinishConnecting();
  void Flush();
  void StopWatching();
  void Fail(int system_error);

  ByteStreamListener& listener_;
  QSocketNotifier read_{QSocketNotifier::Read};
  QSocketNotifier write_{QSocketNotifier::Write};
  std::unique_ptr<char[]> piece_;  // what one read takes
  int fd_ = -1;
  bool connecting_ = false;
  QList<QHostAddress> addresses_;  // not tried yet
  uint16_t port_ = 0;
  uint16_t local_port_ = 0;
  int connect_error_ = 0;
  int send_error_ = 0;  // waits for the event loop to be reported
  std::string unsent_;
};

}  // namespace vesko
