// The linker redirects calls of the system to this file; they, and allocations, fail while a fault
// is armed.
#include <gtest/gtest.h>
#include <netdb.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "desktop/SocketFixture.h"

namespace {

struct Faults {
  int send_error = 0;
  int recv_error = 0;
  int connect_error = 0;
  int socket_error = 0;
  int lookup_error = 0;
  int times = 1;  // that a call fails
  size_t longest_send = SIZE_MAX;
  size_t largest_allocation = SIZE_MAX;
};

std::atomic<Faults*> armed = nullptr;

// Whether this call is to fail, and with which errno.
bool Fails(int Faults::*error) {
  Faults* faults = armed;
  if (!faults || faults->*error == 0 || faults->times == 0) return false;
  --faults->times;
  errno = faults->*error;
  return true;
}

// Look-ups that do not end before they are released.
std::atomic<bool> holds = false;
std::atomic<int> held = 0;

void HoldUp() {
  ++held;
  held.notify_all();
  holds.wait(true);
  --held;
  held.notify_all();
}

void WaitForHeld(int count) {
  for (int now = held; now != count; now = held) held.wait(now);
}

}  // namespace

void* operator new(size_t size) {
  const Faults* faults = armed;
  if (faults && size > faults->largest_allocation) throw std::bad_alloc();
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void* operator new(size_t size, const std::nothrow_t&) noexcept { return std::malloc(size); }
// AddressSanitizer's own arrays would pass the replacement above by.
void* operator new[](size_t size) { return operator new(size); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, size_t) noexcept { std::free(memory); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, size_t) noexcept { std::free(memory); }

extern "C" {
ssize_t __real_send(int fd, const void* bytes, size_t size, int flags);
ssize_t __real_recv(int fd, void* bytes, size_t size, int flags);
int __real_connect(int fd, const sockaddr* address, socklen_t size);
int __real_socket(int family, int type, int protocol);
int __real_getaddrinfo(const char* host, const char* port, const addrinfo* hints, addrinfo** found);

ssize_t __wrap_send(int fd, const void* bytes, size_t size, int flags) {
  if (Fails(&Faults::send_error)) return -1;
  const Faults* faults = armed;
  return __real_send(fd, bytes, faults ? std::min(size, faults->longest_send) : size, flags);
}

ssize_t __wrap_recv(int fd, void* bytes, size_t size, int flags) {
  return Fails(&Faults::recv_error) ? -1 : __real_recv(fd, bytes, size, flags);
}

int __wrap_connect(int fd, const sockaddr* address, socklen_t size) {
  return Fails(&Faults::connect_error) ? -1 : __real_connect(fd, address, size);
}

int __wrap_socket(int family, int type, int protocol) {
  return Fails(&Faults::socket_error) ? -1 : __real_socket(family, type, protocol);
}

int __wrap_getaddrinfo(const char* host, const char* port, const addrinfo* hints,
                       addrinfo** found) {
  const bool asks_network = (hints->ai_flags & (AI_NUMERICHOST | AI_PASSIVE)) == 0;
  if (asks_network && std::string_view(host) == "never.example") {
    HoldUp();
    return EAI_AGAIN;
  }
  if (asks_network && Fails(&Faults::lookup_error)) return errno;
  return __real_getaddrinfo(host, port, hints, found);
}
}

namespace vesko {
namespace {

class SocketFaultTest : public SocketTest {
 protected:
  // Turns the event loop with the faults armed. Calls of the peer are made outside and do not fail.
  template <typename Condition>
  bool RunFaulty(Faults& faults, Condition condition) {
    armed = &faults;
    const bool came = RunUntil(condition);
    armed = nullptr;
    return came;
  }
};

TEST_F(SocketFaultTest, EachFailedCallIsReportedOnce) {
  const std::tuple<int Faults::*, int, int32_t> kCases[] = {
      {&Faults::lookup_error, EAI_NONAME, kSocketHostNotFound},
      {&Faults::lookup_error, EAI_FAIL, kSocketHostNotFound},
      {&Faults::lookup_error, EAI_AGAIN, kSocketTryAgain},
      {&Faults::socket_error, EMFILE, kSocketFault},
      {&Faults::connect_error, ENETDOWN, kSocketNetworkDown},
      {&Faults::connect_error, EACCES, kSocketPermissionDenied},
      {&Faults::connect_error, EADDRINUSE, kSocketAddressInUse},
      {&Faults::send_error, EPIPE, kSocketConnectionReset},
      {&Faults::send_error, ENOBUFS, kSocketFault},
      {&Faults::recv_error, ETIMEDOUT, kSocketTimedOut},
      {&Faults::recv_error, EHOSTUNREACH, kSocketHostUnreachable},
  };
  for (const auto& [call, error, number] : kCases) {
    SCOPED_TRACE(number);
    LoopbackPeer peer;
    errors_.clear();
    Faults faults;
    faults.*call = error;
    faults.times = 2;  // a name may lead to two addresses
    if (call == &Faults::send_error || call == &Faults::recv_error) {
      ASSERT_TRUE(Meet(peer));
      armed = &faults;
      socket_->SendData(u"PASS secret\r\n");
      EXPECT_TRUE(errors_.empty()) << "from within SendData";
      armed = nullptr;
      if (call == &Faults::recv_error) peer.Send("+OK\r\n");
    } else {
      armed = &faults;  // the look-up begins at once, beside this thread
      socket_->Connect(u"localhost", peer.Port());
    }
    EXPECT_TRUE(RunFaulty(faults, [&] { return socket_->State() == SocketState::kError; }));
    TurnEventLoop(std::chrono::milliseconds(0));
    EXPECT_EQ(errors_, std::vector<int32_t>{number});
    EXPECT_FALSE(Contains(message_, u"secret"));
    socket_->Close();
  }
}

TEST_F(SocketFaultTest, TemporaryErrorsAndShortWritesLoseNothing) {
  const Faults kCases[] = {
      {.send_error = EINTR, .times = 2}, {.send_error = EAGAIN, .times = 3},
      {.recv_error = EINTR, .times = 2}, {.recv_error = EAGAIN, .times = 3},
      {.times = 0, .longest_send = 1},   {.send_error = EAGAIN, .times = 2, .longest_send = 3},
  };
  for (Faults faults : kCases) {
    LoopbackPeer peer;
    ASSERT_TRUE(Meet(peer));
    text_.clear();
    armed = &faults;
    socket_->SendData(u"USER anna\r\n");
    socket_->SendData(u"QUIT\r\n");
    armed = nullptr;
    std::string received;
    ASSERT_TRUE(RunUntil([&] {
      if (peer.HasNews()) received += peer.Receive();
      armed = &faults;
      TurnEventLoop(std::chrono::milliseconds(1));
      armed = nullptr;
      return received.size() >= 17;
    }));
    EXPECT_EQ(received, "USER anna\r\nQUIT\r\n");
    peer.Send("+OK\r\n");
    EXPECT_TRUE(RunFaulty(faults, [&] { return text_ == u"+OK\r\n"; }));
    EXPECT_TRUE(errors_.empty());
    socket_->Close();
  }
}

TEST_F(SocketFaultTest, RunningOutOfMemoryEndsTheConnection) {
  take_data_ = false;
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer));
  for (int i = 0; i < 3; ++i) peer.Send(std::string(65536, 'x'));
  Faults faults{.largest_allocation = 100000};
  EXPECT_TRUE(RunFaulty(faults, [&] { return socket_->State() == SocketState::kError; }));
  EXPECT_EQ(errors_, std::vector<int32_t>{kSocketNoMemory});
  EXPECT_EQ(socket_->GetData(), u"");
  EXPECT_EQ(arrivals_, 0);
  socket_->Close();
  EXPECT_TRUE(Meet(peer));
  peer.Close();

  NewSocket(kCodePageUtf8, {}, {peer.Port()});
  socket_->Connect(u"127.0.0.1", peer.Port());
  EXPECT_TRUE(RunFaulty(faults, [&] { return socket_->State() == SocketState::kError; })) << "TLS";
  EXPECT_EQ(errors_, std::vector<int32_t>(2, kSocketNoMemory));
}

TEST_F(SocketFaultTest, LookUpThatNeverEndsHoldsNothingUp) {
  holds = true;
  socket_->Connect(u"never.example", 110);
  WaitForHeld(1);
  EXPECT_EQ(socket_->State(), SocketState::kResolvingHost);
  socket_->Close();
  EXPECT_EQ(socket_->State(), SocketState::kClosed);
  LoopbackPeer peer;
  EXPECT_TRUE(Meet(peer)) << "beside it";
  socket_->Close();
  socket_->Connect(u"never.example", 110);
  WaitForHeld(2);
  socket_.reset();
  holds = false;
  holds.notify_all();
  WaitForHeld(0);
  TurnEventLoop(std::chrono::milliseconds(0));
  EXPECT_EQ(arrivals_, 0);
  EXPECT_TRUE(errors_.empty());
}

}  // namespace
}  // namespace vesko
