#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "base/Text.h"

namespace vesko {

enum class SocketState : int32_t {
  kClosed = 0,
  kOpen = 1,
  kListening = 2,
  kConnectionPending = 3,
  kResolvingHost = 4,
  kHostResolved = 5,
  kConnecting = 6,
  kConnected = 7,
  kClosing = 8,  // the peer closed; data may still wait
  kError = 9,
};

inline constexpr int32_t kSocketPermissionDenied = 10013;
inline constexpr int32_t kSocketAddressInUse = 10048;
inline constexpr int32_t kSocketAddressNotAvailable = 10049;  // or a port out of range
inline constexpr int32_t kSocketNetworkDown = 10050;
inline constexpr int32_t kSocketNetworkUnreachable = 10051;
inline constexpr int32_t kSocketConnectionAborted = 10053;  // by us: no TLS, or a failed check
inline constexpr int32_t kSocketConnectionReset = 10054;
inline constexpr int32_t kSocketTimedOut = 10060;
inline constexpr int32_t kSocketConnectionRefused = 10061;
inline constexpr int32_t kSocketHostUnreachable = 10065;
inline constexpr int32_t kSocketHostNotFound = 11001;
inline constexpr int32_t kSocketTryAgain = 11002;
inline constexpr int32_t kSocketFault = 11003;  // whatever has no number of its own

inline constexpr int32_t kPop3Port = 110;
inline constexpr int32_t kPop3sPort = 995;

/// A non-blocking TCP client. One thread: the events come only while the pump runs, never from
/// within a member, and none comes after Close until the next Connect. Text is converted with the
/// system's code page; a character split over two arrivals is not broken.
class Socket {
 public:
  virtual ~Socket() = default;

  /// Data has arrived, or the peer has closed (State is kClosing). GetData returns nothing when all
  /// that came is a part of a character: it is a sign of life nevertheless.
  std::function<void()> on_data_arrival;

  /// The connection failed; State is kError. The number is one of the platform-independent ones
  /// above (or the system's own in the same scheme), the description words for a person. Neither
  /// holds anything that was sent.
  std::function<void(int32_t number, const Text& description)> on_error;

  virtual SocketState State() const = 0;

  /// Port to bind before connecting; 0 is any.
  virtual void SetLocalPort(int32_t port) = 0;

  /// Starts to connect. Port 995 is TLS from the first byte (RFC 8314) with the certificate chain
  /// and the host name checked; a failed check is on_error. Raises run-time error 40020 unless the
  /// state is kClosed.
  virtual void Connect(const Text& host, int32_t port) = 0;

  /// Sends text in one write. Raises run-time error 40006 unless connected.
  virtual void SendData(TextView text) = 0;

  /// All text that has arrived and was not taken yet; may be empty.
  virtual Text GetData() = 0;

  /// How many bytes of the peer's have arrived on this connection, decrypted ones with TLS and those
  /// of an incomplete character included; 0 after Close. Their text may take twice the memory.
  virtual uint64_t BytesReceived() const = 0;

  /// Drops the connection and all that waits. State is kClosed when it returns; safe in any state
  /// and from within an event.
  virtual void Close() = 0;
};

inline constexpr int32_t kSocketWrongState = 40006;
inline constexpr int32_t kSocketInvalidState = 40020;

}  // namespace vesko
