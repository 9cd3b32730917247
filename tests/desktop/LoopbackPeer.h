#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vesko {

/// The other end of a connection, driven step by step by a test. Calls block for some seconds at
/// most.
class LoopbackPeer {
 public:
  /// Listens on a free port of an address ("127.0.0.1" or "::1").
  explicit LoopbackPeer(const char* address = "127.0.0.1", int backlog = 16);
  ~LoopbackPeer();
  LoopbackPeer(const LoopbackPeer&) = delete;
  LoopbackPeer& operator=(const LoopbackPeer&) = delete;

  int32_t Port() const { return port_; }
  /// Whether Receive would return at once, or Accept before there is a client.
  bool HasNews() const;
  bool Accept();
  int32_t ClientPort() const;
  bool Send(const std::string& bytes);
  std::string Receive(size_t most = 65536);  // empty at the end of the connection
  void Close();
  void Reset();
  intptr_t Descriptor() const { return fd_; }

 private:
  intptr_t listener_;
  intptr_t fd_ = -1;
  int32_t port_ = 0;
};

/// A port on which nobody listens.
int32_t DeadPort();

}  // namespace vesko
