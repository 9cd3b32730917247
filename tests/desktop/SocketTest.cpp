#include <gtest/gtest.h>

#include <tuple>

#include "desktop/SocketFixture.h"
#include "support/Beside.h"
#include "support/ErrorOf.h"

namespace vesko {
namespace {

TEST_F(SocketTest, TalksToNamesAndAddressesOfBothKinds) {
  for (auto [host, address] :
       {std::pair{u"127.0.0.1", "127.0.0.1"}, {u"localhost", "127.0.0.1"}, {u"::1", "::1"}}) {
    SCOPED_TRACE(address);
    LoopbackPeer peer(address);
    ASSERT_TRUE(Meet(peer, host));
    text_.clear();
    ASSERT_TRUE(peer.Send("+OK ready\r\n"));
    EXPECT_TRUE(RunToText(u"+OK ready\r\n"));
    socket_->SendData(u"USER anna\r\n");
    EXPECT_EQ(peer.Receive(), "USER anna\r\n");
    EXPECT_EQ(socket_->GetData(), u"") << "taken already";
    socket_->Close();
    EXPECT_EQ(peer.Receive(), "");
  }
  EXPECT_TRUE(errors_.empty());
}

TEST_F(SocketTest, ReportsWhyThereIsNoConnection) {
  const std::tuple<Text, int32_t, int32_t> kCases[] = {
      {u"", 110, kSocketHostNotFound},
      {Text(64, u'x') + u".example", 110, kSocketHostNotFound},  // no label is that long
      {u"127.0.0.1", DeadPort(), kSocketConnectionRefused},
      {u"localhost", DeadPort(), kSocketConnectionRefused},
      {u"127.0.0.1", 0, kSocketAddressNotAvailable},
      {u"127.0.0.1", 65536, kSocketAddressNotAvailable},
      {u"255.255.255.255", 110, kSocketNetworkUnreachable},
  };
  for (const auto& [host, port, number] : kCases) {
    SCOPED_TRACE(locale_->ToBytes(host) + ":" + std::to_string(port));
    errors_.clear();
    socket_->Connect(host, port);
    EXPECT_TRUE(errors_.empty()) << "from within Connect";
    EXPECT_EQ(socket_->State(), SocketState::kResolvingHost);
    EXPECT_TRUE(RunToState(SocketState::kError));
    EXPECT_EQ(errors_, std::vector<int32_t>{number});
    EXPECT_FALSE(message_.empty());
    socket_->Close();
  }
  EXPECT_EQ(arrivals_, 0);
}

TEST_F(SocketTest, KeepsWhatThePeerSaidBeforeItClosed) {
  take_data_ = false;
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer));
  peer.Send("-ERR bye\r\n");
  peer.Close();
  ASSERT_TRUE(RunToState(SocketState::kClosing));
  EXPECT_EQ(ErrorOf([&] { socket_->SendData(u"QUIT\r\n"); }), kSocketWrongState);
  EXPECT_EQ(socket_->GetData(), u"-ERR bye\r\n");
  EXPECT_TRUE(RunToQuiet()) << "waiting must not keep the processor busy";
  EXPECT_EQ(arrivals_, 2) << "the text, and the end";
  EXPECT_TRUE(errors_.empty());
}

TEST_F(SocketTest, ReportsAResetAndKeepsSecretsOutOfTheMessage) {
  for (bool while_sending : {false, true}) {
    if (!while_sending && !SystemTellsResets()) continue;
    LoopbackPeer peer;
    ASSERT_TRUE(Meet(peer));
    socket_->SendData(u"PASS secret\r\n");
    EXPECT_EQ(peer.Receive(), "PASS secret\r\n");
    peer.Reset();
    if (while_sending) {
      socket_->SendData(u"PASS secret\r\n");
      EXPECT_TRUE(errors_.empty()) << "from within SendData";
    }
    EXPECT_TRUE(RunToState(SocketState::kError));
    EXPECT_EQ(errors_, std::vector<int32_t>{kSocketConnectionReset});
    EXPECT_FALSE(Contains(message_, u"secret"));
    socket_->Close();
    errors_.clear();
  }
}

TEST_F(SocketTest, RefusesCallsThatItsStateDoesNotAllow) {
  EXPECT_EQ(ErrorOf([&] { socket_->SendData(u"x"); }), kSocketWrongState);
  LoopbackPeer peer;
  socket_->Connect(u"127.0.0.1", peer.Port());
  EXPECT_EQ(ErrorOf([&] { socket_->SendData(u"x"); }), kSocketWrongState);
  EXPECT_EQ(ErrorOf([&] { socket_->Connect(u"127.0.0.1", 110); }), kSocketInvalidState);
  ASSERT_TRUE(RunToState(SocketState::kConnected));
  EXPECT_EQ(ErrorOf([&] { socket_->Connect(u"127.0.0.1", 110); }), kSocketInvalidState);
}

TEST_F(SocketTest, PutsCharactersThatArriveInPiecesTogether) {
  NewSocket(949);
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer));
  int sent = 0;
  for (char byte : std::string("a\xC7\xD1\xB1\xDB\r\n")) {
    peer.Send({byte});
    ++sent;
    ASSERT_TRUE(RunUntil([&] { return arrivals_ == sent; })) << "half a character is an arrival";
    EXPECT_EQ(socket_->BytesReceived(), static_cast<uint64_t>(sent));
  }
  EXPECT_EQ(text_, u"a\uD55C\uAE00\r\n");
  // The beginning of a character must not run into the next connection.
  peer.Send("\xC7");
  ASSERT_TRUE(RunUntil([&] { return arrivals_ > sent; }));
  socket_->Close();
  EXPECT_EQ(socket_->BytesReceived(), 0u);
  text_.clear();
  ASSERT_TRUE(Meet(peer));
  peer.Send("+OK");
  EXPECT_TRUE(RunToText(u"+OK"));
}

TEST_F(SocketTest, NeitherLosesDataNorBlocksWhenThePeerDoesNotRead) {
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer));
  std::string sent;
  for (int i = 0; i < 200; ++i) {
    const std::string piece(65536, static_cast<char>('a' + i % 26));
    socket_->SendData(FromAscii(piece));
    sent += piece;
  }
  EXPECT_TRUE(RunToQuiet()) << "waiting must not keep the processor busy";
  std::string received;
  Beside reader([&] {
    for (std::string piece = "x"; received.size() < sent.size() && !piece.empty();)
      received += piece = peer.Receive();
  });
  ASSERT_TRUE(RunUntil([&] { return reader.Done(); }));
  EXPECT_TRUE(received == sent);
}

TEST_F(SocketTest, CanBeClosedInEveryState) {
  LoopbackPeer peer;
  // A listener whose queue is full leaves a client connecting.
  LoopbackPeer full("127.0.0.1", 0);
  auto first = MakeTestSocket(*locale_, {}, {});
  auto second = MakeTestSocket(*locale_, {}, {});
  first->Connect(u"127.0.0.1", full.Port());
  ASSERT_TRUE(RunUntil([&] { return first->State() == SocketState::kConnected; }));
  second->Connect(u"127.0.0.1", full.Port());

  const auto connect = [&](const Text& host, const LoopbackPeer& to, SocketState state) {
    socket_->Connect(host, to.Port());
    return RunToState(state);
  };
  const std::pair<const char*, std::function<bool()>> kCases[] = {
      {"closed", [] { return true; }},
      {"looking up", [&] { return connect(u"localhost", peer, SocketState::kResolvingHost); }},
      {"about to fail", [&] { return connect(u"", peer, SocketState::kResolvingHost); }},
      {"connecting", [&] { return connect(u"127.0.0.1", full, SocketState::kConnecting); }},
      {"with an arrival under way", [&] { return Meet(peer) && peer.Send("late"); }},
      {"with a reset unreported",
       [&] {
         const bool met{Meet(peer)};
         peer.Reset();
         socket_->SendData(u"x");
         return met;
       }},
      {"peer closing",
       [&] {
         const bool met{Meet(peer)};
         peer.Close();
         return met && RunToState(SocketState::kClosing);
       }},
      {"failed", [&] { return connect(u"", peer, SocketState::kError); }},
  };
  for (const auto& [name, reach] : kCases) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(reach());
    arrivals_ = 0;
    errors_.clear();
    socket_->Close();
    EXPECT_EQ(socket_->State(), SocketState::kClosed);
    EXPECT_EQ(socket_->GetData(), u"");
    EXPECT_TRUE(RunToQuiet());
    EXPECT_EQ(arrivals_, 0);
    EXPECT_TRUE(errors_.empty());
    EXPECT_EQ(socket_->State(), SocketState::kClosed);
  }
}

TEST_F(SocketTest, CanBeClosedAndConnectedAgainFromWithinItsEvents) {
  LoopbackPeer peer;
  int rounds = 0;
  auto again = [&] {
    socket_->Close();
    // Every other round fails, so that both events do it.
    if (++rounds < 10) socket_->Connect(rounds % 2 ? u"" : u"127.0.0.1", peer.Port());
  };
  socket_->on_data_arrival = again;
  socket_->on_error = [&](int32_t, const Text&) { again(); };
  socket_->Connect(u"127.0.0.1", peer.Port());
  Beside greeter([&] {
    for (int i = 0; i < 5 && peer.Accept(); ++i) {
      peer.Send("+OK\r\n");
      peer.Receive();
    }
  });
  EXPECT_TRUE(RunUntil([&] { return rounds == 10; }));
  EXPECT_EQ(socket_->State(), SocketState::kClosed);
}

TEST_F(SocketTest, LeavesNothingBehindAfterAThousandConnections) {
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer, u"localhost"));
  socket_->Close();
  const size_t before = OpenDescriptors();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_TRUE(Meet(peer)) << i;
    socket_->Close();
  }
  EXPECT_TRUE(RunToDescriptors(before)) << OpenDescriptors() - before;
}

TEST_F(SocketTest, BindsTheLocalPortThatWasAskedFor) {
  LoopbackPeer peer;
  const int32_t local_port = DeadPort();
  socket_->SetLocalPort(local_port);
  ASSERT_TRUE(Meet(peer));
  EXPECT_EQ(peer.ClientPort(), local_port);
}

}  // namespace
}  // namespace vesko
