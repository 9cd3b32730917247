#pragma once

#include <cstdint>
#include <string_view>

#include "base/Text.h"

namespace vesko {

/// What becomes of a stream. Called only by the event loop. A listener may close or destroy the
/// stream from within a call, unless the stream says otherwise.
class ByteStreamListener {
 public:
  /// Bytes may be sent from now on.
  virtual void Opened() = 0;

  /// The view lives until the call returns.
  virtual void BytesArrived(std::string_view bytes) = 0;

  /// The peer sends nothing more.
  virtual void PeerClosed() = 0;

  /// The stream is of no use any more. Number and description as Socket::on_error has them.
  virtual void Failed(int32_t number, const Text& description) = 0;

 protected:
  ~ByteStreamListener() = default;
};

/// One connection's bytes, both ways.
class ByteStream {
 public:
  virtual ~ByteStream() = default;

  /// Sends all bytes in order, and returns at once whatever the peer does; what it does not take
  /// yet waits. Precondition: opened.
  virtual void Send(std::string_view bytes) = 0;
};

}  // namespace vesko
