#pragma once

#include <openssl/types.h>

#include <cstddef>
#include <cstdint>
#include <future>
#include <memory>
#include <string>

namespace vesko {

/// The other end of a connection, driven step by step by a test. Calls block for at most some
/// seconds; what a client sends or accepts meanwhile waits in the system.
class LoopbackPeer {
 public:
  /// Listens on a free port of an address ("127.0.0.1" or "::1").
  explicit LoopbackPeer(const char* address = "127.0.0.1", int backlog = 16);
  ~LoopbackPeer();
  LoopbackPeer(const LoopbackPeer&) = delete;
  LoopbackPeer& operator=(const LoopbackPeer&) = delete;

  int32_t Port() const { return port_; }
  bool Accept();
  int32_t ClientPort() const;
  bool Send(const std::string& bytes);
  std::string Receive(size_t most = 65536);  // empty at the end of the connection
  std::string ReceiveAll(size_t size);
  void Close();
  void Reset();
  void StopListening();
  int Descriptor() const { return fd_; }

 private:
  int listener_;
  int fd_ = -1;
  int32_t port_ = 0;
};

/// A port on which nobody listens.
int32_t DeadPort();

/// A certificate with its key. Made for a test, in memory and in seconds.
struct Certificate {
  std::shared_ptr<X509> x509;
  std::shared_ptr<EVP_PKEY> key;
};

/// `valid_days` may be negative: expired yesterday and before. Without an issuer it signs itself.
Certificate MakeCertificate(const std::string& name, int valid_days, const Certificate* issuer);
std::string ToPem(const Certificate& certificate);

/// What the server's side of a TLS connection saw.
struct TlsOutcome {
  bool handshake = false;
  std::string server_name;  // as the client asked for it
  std::string received;     // one read's application data
};

/// In a thread: accepts a client, speaks TLS with it up to `highest_version`, greets it, and reads
/// once.
std::future<TlsOutcome> ServeTls(LoopbackPeer& peer, const Certificate& certificate,
                                 int highest_version);

}  // namespace vesko
