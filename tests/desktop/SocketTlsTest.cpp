#include <gtest/gtest.h>
#include <openssl/ssl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "desktop/SocketFixture.h"
#include "desktop/TlsPeer.h"

namespace vesko {
namespace {

using std::chrono::milliseconds;

class SocketTlsTest : public SocketTest {
 protected:
  void SetUp() override {
    std::ofstream(authorities_) << ToPem(authority_);
    NewSocket(kCodePageUtf8, authorities_, {peer_.Port()});
  }
  void TearDown() override { std::filesystem::remove(authorities_); }

  void ExpectFailure(TextView expected) {
    EXPECT_TRUE(RunToState(SocketState::kError));
    EXPECT_EQ(errors_, std::vector<int32_t>{kSocketConnectionAborted});
    EXPECT_TRUE(Contains(words_, expected)) << locale_->ToBytes(words_);
    EXPECT_EQ(arrivals_, 0);
  }

  const std::string authorities_ =
      testing::TempDir() + "authorities-" + std::to_string(::getpid()) + ".pem";
  const Certificate authority_ = MakeCertificate("Test Authority", 10, nullptr);
  const Certificate good_ = MakeCertificate("localhost", 10, &authority_);
  LoopbackPeer peer_;
};

TEST_F(SocketTlsTest, SpeaksOnlyWhenTheCertificateIsChecked) {
  auto outcome = ServeTls(peer_, good_, TLS1_3_VERSION);
  socket_->Connect(u"localhost", peer_.Port());
  ASSERT_TRUE(RunToText(u"+OK ready\r\n")) << locale_->ToBytes(words_);
  EXPECT_EQ(socket_->State(), SocketState::kConnected);
  socket_->SendData(u"USER anna\r\n");
  EXPECT_TRUE(RunToState(SocketState::kClosing));
  const TlsOutcome seen = outcome.get();
  EXPECT_EQ(seen.server_name, "localhost");
  EXPECT_EQ(seen.received, "USER anna\r\n");
  EXPECT_TRUE(errors_.empty());
}

TEST_F(SocketTlsTest, SaysWhatIsWrongWithACertificate) {
  const Certificate stranger = MakeCertificate("Some Authority", 10, nullptr);
  const struct {
    const char* name;
    Certificate certificate;
    Text host;
    int version;
    TextView words;
  } kCases[] = {
      {"expired", MakeCertificate("localhost", -1, &authority_), u"localhost", TLS1_3_VERSION,
       u"It has expired."},
      {"another name", MakeCertificate("pop.example", 10, &authority_), u"localhost",
       TLS1_3_VERSION, u"server of another name"},
      {"name, not address", good_, u"127.0.0.1", TLS1_3_VERSION, u"server of another name"},
      {"its own authority", MakeCertificate("localhost", 10, nullptr), u"localhost", TLS1_2_VERSION,
       u"signed by nobody but"},
      {"unknown authority", MakeCertificate("localhost", 10, &stranger), u"localhost",
       TLS1_2_VERSION, u"authority that is not known"},
      {"old TLS", good_, u"localhost", TLS1_1_VERSION, u"no common way"},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(row.name);
    errors_.clear();
    auto outcome = ServeTls(peer_, row.certificate, row.version);
    socket_->Connect(row.host, peer_.Port());
    ExpectFailure(row.words);
    socket_->Close();
    EXPECT_EQ(outcome.get().received, "");
  }
}

TEST_F(SocketTlsTest, GivesUpAtOnceOnAServerThatSpeaksNoTls) {
  const struct {
    const char* greeting;  // null: closes at once
    TextView words;
  } kCases[] = {
      {"+OK\r\n", u"does not encrypt"},
      {nullptr, u"closed the connection"},
  };
  for (const auto& row : kCases) {
    errors_.clear();
    auto server = std::async(std::launch::async, [&] {
      peer_.Accept();
      if (!row.greeting) {
        peer_.Receive();
        return peer_.Close();
      }
      peer_.Send(row.greeting);
      while (!peer_.Receive().empty()) continue;
    });
    socket_->Connect(u"localhost", peer_.Port());
    ExpectFailure(row.words);
    socket_->Close();
  }
}

TEST_F(SocketTlsTest, CanBeClosedAtAnyMomentOfTheHandshake) {
  size_t before = 0;
  for (int turns = 0; turns < 20; ++turns) {
    // The first look-up opens what the process keeps for all that follow.
    if (turns == 1) before = OpenDescriptors();
    auto outcome = ServeTls(peer_, good_, TLS1_3_VERSION);
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
