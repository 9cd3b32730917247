#pragma once

#include <cstdint>
#include <string_view>

#include "base/Text.h"

namespace vesko {

/// Receives what happens to a stream of bytes. All calls come from the event loop. A listener may
/// close or destroy the stream from within a call, unless the stream says otherwise.
class StreamListener {
 public:
  /// From now on bytes may be sent.
  virtual void Opened() = 0;

  /// The view is valid until the call returns. The bytes are the peer's and not to be trusted.
  virtual void BytesArrived(std::string_view bytes) = 0;

  /// The peer will send nothing more.
  virtual void PeerClosed() = 0;

  /// The stream is closed because of an error. Number and description as in Socket::on_error.
  virtual void Failed(int32_t number, const Text& description) = 0;

 protected:
  ~StreamListener() = default;
};

}  // namespace vesko
