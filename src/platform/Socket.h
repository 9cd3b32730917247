#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "base/Text.h"

namespace vesko {

/// State of a connection. A socket of this program never takes kOpen, kListening,
/// kConnectionPending or kHostResolved.
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

/// Error numbers, the same on every system.
inline constexpr int32_t kSocketPermissionDenied = 10013;
inline constexpr int32_t kSocketAddressInUse = 10048;
inline constexpr int32_t kSocketAddressNotAvailable = 10049;  // or a port out of range
inline constexpr int32_t kSocketNetworkDown = 10050;
inline constexpr int32_t kSocketNetworkUnreachable = 10051;
inline constexpr int32_t kSocketConnectionAborted =
    10053;  // by this end: no TLS, or a refused certificate
inline constexpr int32_t kSocketConnectionReset = 10054;
inline constexpr int32_t kSocketNoMemory = 10055;
inline constexpr int32_t kSocketTimedOut = 10060;
inline constexpr int32_t kSocketConnectionRefused = 10061;
inline constexpr int32_t kSocketHostUnreachable = 10065;
inline constexpr int32_t kSocketHostNotFound = 11001;
inline constexpr int32_t kSocketTryAgain = 11002;
inline constexpr int32_t kSocketFault = 11003;  // any other error

inline constexpr int32_t kPop3Port = 110;
inline constexpr int32_t kPop3sPort = 995;

/// A non-blocking TCP client for one thread. Events come only while the pump runs, never from
/// within a member, and none comes after Close until the next Connect. Text is converted with the
/// system's code page; a character that arrives in pieces is put together. What arrives is not to
/// be trusted.
class Socket {
 public:
  virtual ~Socket() = default;

  /// Data has arrived, or the peer has closed the connection (State is kClosing). GetData returns
  /// nothing when all that came is part of a character; it is a sign of life nevertheless.
  std::function<void()> on_data_arrival;

  /// The connection failed; State is kError. The number is one of the above or the system's own in
  /// the same scheme, the description one or more sentences for a person. Neither reveals anything
  /// that was sent.
  std::function<void(int32_t number, const Text& description)> on_error;

  virtual SocketState State() const = 0;

  /// Port of this end for the next Connect; 0 is any.
  virtual void SetLocalPort(int32_t port) = 0;

  /// Starts to look the host up and to connect to it. Port 995 is TLS from the first byte (RFC
  /// 8314), where the certificate's chain and its names (RFC 9525) are checked before anything is
  /// sent; a failed check is reported by on_error, like every other failure. Raises run-time error
  /// 40020 unless the state is kClosed.
  virtual void Connect(const Text& host, int32_t port) = 0;

  /// Sends text in one write and returns at once; what the peer does not take yet is kept. Raises
  /// run-time error 40006 unless the state is kConnected.
  virtual void SendData(TextView text) = 0;

  /// Takes all text that has arrived; may be empty.
  virtual Text GetData() = 0;

  /// Number of bytes that have arrived on this connection, decrypted where there is TLS and those
  /// of an incomplete character included; 0 after Close. Their text may take twice the memory.
  virtual uint64_t BytesReceived() const = 0;

  /// Drops the connection, what has arrived and what is still to be sent; with TLS the peer is
  /// told. Returns at once with State kClosed, in any state and also from within an event.
  virtual void Close() = 0;
};

/// Run-time errors of the members above.
inline constexpr int32_t kSocketWrongState = 40006;
inline constexpr int32_t kSocketInvalidState = 40020;

}  // namespace vesko
