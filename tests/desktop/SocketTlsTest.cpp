#include <gtest/gtest.h>
#include <openssl/ssl.h>

#include "desktop/SocketFixture.h"
#include "desktop/TlsPeer.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

using std::chrono::milliseconds;

class SocketTlsTest : public SocketTest {
 protected:
  void SetUp() override {
    folder_.Write("authorities", ToPem(authority_));
    NewSocket(kCodePageUtf8, folder_ / "authorities", {peer_.Port()});
  }

  TempFolder folder_;
  const Certificate authority_ = MakeAuthority("Test Authority");
  const TlsCase case_{.name = "good"};
  const Certificate good_ = MakeCertificate(case_, &authority_);
  LoopbackPeer peer_;
};

TEST_F(SocketTlsTest, GivesUpAtOnceOnAServerThatSpeaksNoTls) {
  for (const bool greets : {true, false}) {
    errors_.clear();
    auto server = std::async(std::launch::async, [&] {
      peer_.Accept();
      if (greets) peer_.Send("+OK\r\n");
      peer_.Receive();
      if (!greets) return peer_.Close();
      while (!peer_.Receive().empty()) continue;
    });
    socket_->Connect(u"localhost", peer_.Port());
    EXPECT_TRUE(RunToState(SocketState::kError));
    EXPECT_TRUE(Contains(message_, greets ? u"does not encrypt" : u"closed the connection"))
        << locale_->ToBytes(message_);
    socket_->Close();
  }
}

TEST_F(SocketTlsTest, CanBeClosedAtAnyMomentOfTheHandshake) {
  size_t before = 0;
  for (int turns = 0; turns < 20; ++turns) {
    // The first look-up opens what the process keeps for all that follow.
    if (turns == 1) before = OpenDescriptors();
    auto outcome = ServeTls(peer_, good_, case_);
    socket_->on_data_arrival = [&] { socket_->Close(); };
    socket_->Connect(u"localhost", peer_.Port());
    RunUntil([&] { return socket_->State() != SocketState::kResolvingHost; });
    for (int i = 0; i < turns; ++i) TurnEventLoop(milliseconds(1));
    socket_->Close();
    outcome.get();
    TurnEventLoop(milliseconds(1));
    EXPECT_EQ(socket_->State(), SocketState::kClosed);
  }
  EXPECT_TRUE(errors_.empty());
  EXPECT_TRUE(RunToDescriptors(before)) << OpenDescriptors() - before;
}

}  // namespace
}  // namespace vesko
