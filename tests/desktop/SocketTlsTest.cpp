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

  // Plays the server until it has sent `most` bytes, or all that it has to say. Returns how many.
  size_t Converse(size_t most) {
    TlsServerEnd server(good_);
    size_t sent = 0;
    RunUntil([&] { return peer_.HasNews(); });
    peer_.Accept();
    while (sent < most && RunUntil([&] { return peer_.HasNews() || !text_.empty(); })) {
      if (!text_.empty()) break;
      const std::string answer = server.Answer(peer_.Receive()).substr(0, most - sent);
      peer_.Send(answer);
      sent += answer.size();
    }
    return sent;
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
    // The first look-up opens files that the process keeps open.
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

// The server's bytes stop at any place, also in the middle of a record.
TEST_F(SocketTlsTest, TellsAResetFromAnEndAtAnyByte) {
  bool all = false;
  for (size_t size = 0; !all; size += size < 8 ? 1 : 97) {
    for (const bool reset : {true, false}) {
      SCOPED_TRACE(std::to_string(size) + (reset ? ", then a reset" : ", then the end"));
      errors_.clear();
      text_.clear();
      socket_->Connect(u"localhost", peer_.Port());
      all = Converse(size) < size;
      reset ? peer_.Reset() : peer_.Close();
      ASSERT_TRUE(RunToEnd());
      const bool ended = socket_->State() == SocketState::kClosing;
      EXPECT_FALSE(ended && (reset || size == 0));
      EXPECT_TRUE(ended || reset || !all);
      EXPECT_EQ(text_, all ? u"+OK ready\r\n" : u"");
      const int32_t number = reset ? kSocketConnectionReset : kSocketConnectionAborted;
      EXPECT_EQ(errors_, std::vector<int32_t>(ended ? 0 : 1, number));
      socket_->Close();
    }
  }
}

}  // namespace
}  // namespace vesko
