#include <gtest/gtest.h>
#include <openssl/ssl.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QTimer>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/RunTimeError.h"
#include "desktop/LoopbackPeer.h"
#include "desktop/linux/IcuLocale.h"
#include "desktop/linux/QtSocket.h"

namespace vesko {
namespace {

using std::chrono::milliseconds;
using SteadyClock = std::chrono::steady_clock;

constexpr milliseconds kPatience{10000};
constexpr milliseconds kAWhile{50};  // long enough for whatever is on its way over loopback

// One port of the socket: how to make one, and how to let its event loop turn once.
struct SocketPort {
  const char* name;
  std::unique_ptr<Socket> (*make)(const Locale& locale, const std::string& certificate_file,
                                  std::vector<int32_t> tls_ports);
  void (*turn)(milliseconds longest_wait);
};

void TurnQt(milliseconds longest_wait) {
  static int count = 1;
  static char name[] = "socket_test";
  static char* arguments[] = {name, nullptr};
  static QCoreApplication application(count, arguments);
  QTimer timer;
  timer.setSingleShot(true);
  timer.start(longest_wait);
  QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

std::string PortName(const testing::TestParamInfo<SocketPort>& info) { return info.param.name; }

class SocketTest : public testing::TestWithParam<SocketPort> {
 protected:
  SocketTest() {
    GetParam().turn(milliseconds(0));
    NewSocket();
  }

  void NewSocket(int code_page = kCodePageUtf8, const std::string& certificate_file = {},
                 std::vector<int32_t> tls_ports = {}) {
    socket_.reset();
    locale_ = MakeIcuLocale(code_page, "en_US");
    socket_ = GetParam().make(*locale_, certificate_file, std::move(tls_ports));
    socket_->on_data_arrival = [this] {
      ++arrivals_;
      if (take_data_) text_ += socket_->GetData();
    };
    socket_->on_error = [this](int32_t number, const Text& description) {
      errors_.push_back(number);
      words_ = description;
    };
  }

  template <typename Condition>
  bool RunUntil(Condition condition) {
    const auto end = SteadyClock::now() + kPatience;
    while (!condition()) {
      if (SteadyClock::now() > end) return false;
      GetParam().turn(milliseconds(20));
    }
    return true;
  }

  void RunFor(milliseconds time) {
    const auto end = SteadyClock::now() + time;
    while (SteadyClock::now() < end) GetParam().turn(milliseconds(10));
  }

  bool RunToState(SocketState state) {
    return RunUntil([&] { return socket_->State() == state; });
  }

  bool RunToText(const Text& text) {
    return RunUntil([&] { return text_ == text; });
  }

  // Connected to the peer, which has accepted.
  testing::AssertionResult Meet(LoopbackPeer& peer, const Text& host = u"127.0.0.1") {
    socket_->Connect(host, peer.Port());
    if (!RunToState(SocketState::kConnected)) return testing::AssertionFailure() << "no connection";
    if (!peer.Accept()) return testing::AssertionFailure() << "not accepted";
    return testing::AssertionSuccess();
  }

  std::unique_ptr<Locale> locale_;
  std::unique_ptr<Socket> socket_;
  bool take_data_ = true;
  int arrivals_ = 0;
  Text text_;
  std::vector<int32_t> errors_;
  Text words_;
};

int32_t ErrorOf(const std::function<void()>& step) {
  try {
    step();
  } catch (const RunTimeError& error) {
    return error.Number();
  }
  return 0;
}

size_t OpenDescriptors() {
  std::filesystem::directory_iterator entries("/proc/self/fd");
  return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

TEST_P(SocketTest, HoldsAConversationWithWhateverAddressTheNameLeadsTo) {
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

TEST_P(SocketTest, ReportsWhyThereIsNoConnection) {
  const struct {
    Text host;
    int32_t port;
    int32_t number;
  } kCases[] = {
      {u"", 110, kSocketHostNotFound},
      {Text(64, u'x') + u".example", 110, kSocketHostNotFound},  // no label is that long
      {u"127.0.0.1", DeadPort(), kSocketConnectionRefused},
      {u"localhost", DeadPort(), kSocketConnectionRefused},
      {u"127.0.0.1", 0, kSocketAddressNotAvailable},
      {u"127.0.0.1", -1, kSocketAddressNotAvailable},
      {u"127.0.0.1", 65536, kSocketAddressNotAvailable},
      {u"255.255.255.255", 110, kSocketNetworkUnreachable},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(locale_->ToBytes(row.host) + ":" + std::to_string(row.port));
    errors_.clear();
    socket_->Connect(row.host, row.port);
    EXPECT_TRUE(errors_.empty()) << "from within Connect";
    EXPECT_EQ(socket_->State(), SocketState::kResolvingHost);
    EXPECT_TRUE(RunToState(SocketState::kError));
    EXPECT_EQ(errors_, std::vector<int32_t>{row.number});
    EXPECT_FALSE(words_.empty());
    socket_->Close();
  }
  EXPECT_EQ(arrivals_, 0);
}

TEST_P(SocketTest, KeepsWhatThePeerSaidBeforeItClosed) {
  take_data_ = false;
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer));
  peer.Send("-ERR bye\r\n");
  peer.Close();
  ASSERT_TRUE(RunToState(SocketState::kClosing));
  EXPECT_EQ(ErrorOf([&] { socket_->SendData(u"QUIT\r\n"); }), kSocketWrongState);
  EXPECT_EQ(socket_->GetData(), u"-ERR bye\r\n");
  EXPECT_EQ(arrivals_, 2) << "the text, and the end";
  RunFor(kAWhile);
  EXPECT_EQ(arrivals_, 2);
  EXPECT_TRUE(errors_.empty());
}

TEST_P(SocketTest, ReportsAResetWithoutAWordOfWhatWasSent) {
  for (bool while_sending : {false, true}) {
    LoopbackPeer peer;
    ASSERT_TRUE(Meet(peer));
    socket_->SendData(u"PASS secret\r\n");
    EXPECT_EQ(peer.Receive(), "PASS secret\r\n");
    peer.Reset();
    if (while_sending) {
      std::this_thread::sleep_for(milliseconds(5));
      socket_->SendData(u"PASS secret\r\n");
      EXPECT_TRUE(errors_.empty()) << "from within SendData";
    }
    EXPECT_TRUE(RunToState(SocketState::kError));
    EXPECT_EQ(errors_, std::vector<int32_t>{kSocketConnectionReset});
    EXPECT_FALSE(Contains(words_, u"secret"));
    socket_->Close();
    errors_.clear();
  }
}

TEST_P(SocketTest, RefusesWhatItsStateDoesNotAllow) {
  EXPECT_EQ(ErrorOf([&] { socket_->SendData(u"x"); }), kSocketWrongState);
  LoopbackPeer peer;
  socket_->Connect(u"127.0.0.1", peer.Port());
  EXPECT_EQ(ErrorOf([&] { socket_->SendData(u"x"); }), kSocketWrongState);
  EXPECT_EQ(ErrorOf([&] { socket_->Connect(u"127.0.0.1", 110); }), kSocketInvalidState);
  ASSERT_TRUE(RunToState(SocketState::kConnected));
  EXPECT_EQ(ErrorOf([&] { socket_->Connect(u"127.0.0.1", 110); }), kSocketInvalidState);
}

TEST_P(SocketTest, DoesNotBreakACharacterThatArrivesInPieces) {
  const struct {
    int code_page;
    const char* bytes;
    Text text;
  } kCases[] = {
      {949, "a\xC7\xD1\xB1\xDB\r\n", u"a\uD55C\uAE00\r\n"},
      {932, "\x8E\xA9\x5C\r\n", u"\u81EA\\\r\n"},
      {kCodePageUtf8, "\xED\x95\x9C\xF0\x9F\x93\xA7\r\n", u"\uD55C\U0001F4E7\r\n"},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(row.code_page);
    NewSocket(row.code_page);
    text_.clear();
    LoopbackPeer peer;
    ASSERT_TRUE(Meet(peer));
    for (const char* byte = row.bytes; *byte != '\0'; ++byte) {
      peer.Send(std::string(1, *byte));
      RunFor(milliseconds(2));
    }
    EXPECT_TRUE(RunToText(row.text));
    // The beginning of a character must not run into the next connection.
    peer.Send("\xC7");
    RunFor(milliseconds(2));
    socket_->Close();
    text_.clear();
    ASSERT_TRUE(Meet(peer));
    peer.Send("+OK");
    EXPECT_TRUE(RunToText(u"+OK"));
  }
}

TEST_P(SocketTest, NeitherLosesDataNorBlocksWhenThePeerDoesNotRead) {
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer));
  std::string sent;
  for (int i = 0; i < 200; ++i) {
    const std::string piece(65536, static_cast<char>('a' + i % 26));
    socket_->SendData(FromAscii(piece));
    sent += piece;
  }
  const clock_t before = std::clock();
  RunFor(milliseconds(300));
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 10) << "waiting must cost nothing";
  auto received = std::async(std::launch::async, [&] { return peer.ReceiveAll(sent.size()); });
  ASSERT_TRUE(
      RunUntil([&] { return received.wait_for(milliseconds(0)) == std::future_status::ready; }));
  EXPECT_TRUE(received.get() == sent);
}

TEST_P(SocketTest, TakesAHugeReplyInSmallPieces) {
  take_data_ = false;
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer));
  constexpr size_t kPieces = 50 * 1024;
  auto sender = std::async(std::launch::async, [&] {
    const std::string piece(1024, 'x');
    for (size_t i = 0; i < kPieces; ++i) peer.Send(piece);
    peer.Close();
  });
  ASSERT_TRUE(RunToState(SocketState::kClosing));
  EXPECT_EQ(socket_->GetData().size(), kPieces * 1024);
}

TEST_P(SocketTest, CanBeClosedInEveryState) {
  LoopbackPeer peer;
  // A listener whose queue is full leaves a client connecting.
  LoopbackPeer full("127.0.0.1", 0);
  NewSocket();
  auto first = GetParam().make(*locale_, {}, {});
  auto second = GetParam().make(*locale_, {}, {});
  first->Connect(u"127.0.0.1", full.Port());
  ASSERT_TRUE(RunUntil([&] { return first->State() == SocketState::kConnected; }));
  second->Connect(u"127.0.0.1", full.Port());

  const struct {
    const char* name;
    std::function<void()> reach;
  } kCases[] = {
      {"closed", [] {}},
      {"looking up", [&] { socket_->Connect(u"localhost", peer.Port()); }},
      {"about to fail", [&] { socket_->Connect(u"", peer.Port()); }},
      {"connecting",
       [&] {
         socket_->Connect(u"127.0.0.1", full.Port());
         ASSERT_TRUE(RunToState(SocketState::kConnecting));
       }},
      {"with an arrival under way",
       [&] {
         ASSERT_TRUE(Meet(peer));
         peer.Send("late");
       }},
      {"with a reset unreported",
       [&] {
         ASSERT_TRUE(Meet(peer));
         peer.Reset();
         std::this_thread::sleep_for(milliseconds(5));
         socket_->SendData(u"x");
       }},
      {"peer closing",
       [&] {
         ASSERT_TRUE(Meet(peer));
         peer.Close();
         ASSERT_TRUE(RunToState(SocketState::kClosing));
       }},
      {"failed",
       [&] {
         socket_->Connect(u"", 110);
         ASSERT_TRUE(RunToState(SocketState::kError));
       }},
  };
  for (const auto& row : kCases) {
    SCOPED_TRACE(row.name);
    row.reach();
    arrivals_ = 0;
    errors_.clear();
    socket_->Close();
    EXPECT_EQ(socket_->State(), SocketState::kClosed);
    EXPECT_EQ(socket_->GetData(), u"");
    RunFor(kAWhile);
    EXPECT_EQ(arrivals_, 0);
    EXPECT_TRUE(errors_.empty());
    EXPECT_EQ(socket_->State(), SocketState::kClosed);
  }
}

TEST_P(SocketTest, CanBeClosedAndConnectedAgainFromWithinItsEvents) {
  LoopbackPeer peer;
  int rounds = 0;
  auto again = [&] {
    socket_->Close();
    // Every other round fails, so that each event is the place of it.
    if (++rounds < 10) socket_->Connect(rounds % 2 ? u"" : u"127.0.0.1", peer.Port());
  };
  socket_->on_data_arrival = again;
  socket_->on_error = [&](int32_t, const Text&) { again(); };
  socket_->Connect(u"127.0.0.1", peer.Port());
  auto greeter = std::async(std::launch::async, [&] {
    for (int i = 0; i < 5 && peer.Accept(); ++i) {
      peer.Send("+OK\r\n");
      peer.Receive();
    }
  });
  EXPECT_TRUE(RunUntil([&] { return rounds == 10; }));
  EXPECT_EQ(socket_->State(), SocketState::kClosed);
}

TEST_P(SocketTest, LeavesNothingBehindAfterAThousandConnections) {
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer, u"localhost"));
  socket_->Close();
  const size_t before = OpenDescriptors();
  for (int i = 0; i < 1000; ++i) {
    ASSERT_TRUE(Meet(peer)) << i;
    socket_->Close();
  }
  EXPECT_EQ(OpenDescriptors(), before);
}

TEST_P(SocketTest, BindsTheLocalPortThatWasAskedFor) {
  LoopbackPeer peer;
  const int32_t local_port = DeadPort();
  socket_->SetLocalPort(local_port);
  ASSERT_TRUE(Meet(peer));
  EXPECT_EQ(peer.ClientPort(), local_port);
}

TEST_P(SocketTest, WaitsWithoutTheProcessor) {
  LoopbackPeer peer;
  ASSERT_TRUE(Meet(peer));
  const clock_t before = std::clock();
  RunFor(milliseconds(300));
  peer.Close();
  ASSERT_TRUE(RunToState(SocketState::kClosing));
  RunFor(milliseconds(300));
  EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 10);
}

// --- TLS ----------------------------------------------------------------------------------------

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

TEST_P(SocketTlsTest, SpeaksOnlyWhenTheCertificateIsChecked) {
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

TEST_P(SocketTlsTest, SaysWhatIsWrongWithACertificate) {
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

TEST_P(SocketTlsTest, GivesUpAtOnceOnAServerThatSpeaksNoTls) {
  const struct {
    const char* greeting;  // null: closes at once
    TextView words;
  } kCases[] = {
      {"+OK POP3 server ready\r\n", u"does not encrypt"},
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

TEST_P(SocketTlsTest, CanBeClosedAtAnyMomentOfTheHandshake) {
  const size_t before = OpenDescriptors();
  for (int turns = 0; turns < 20; ++turns) {
    auto outcome = ServeTls(peer_, good_, TLS1_3_VERSION);
    socket_->on_data_arrival = [&] { socket_->Close(); };
    socket_->Connect(u"localhost", peer_.Port());
    RunUntil([&] { return socket_->State() != SocketState::kResolvingHost; });
    for (int i = 0; i < turns; ++i) GetParam().turn(milliseconds(1));
    socket_->Close();
    outcome.get();
    GetParam().turn(milliseconds(1));
    EXPECT_EQ(socket_->State(), SocketState::kClosed);
  }
  EXPECT_TRUE(errors_.empty());
  EXPECT_EQ(OpenDescriptors(), before);
}

const SocketPort kPorts[] = {{"Qt", MakeQtSocket, TurnQt}};

INSTANTIATE_TEST_SUITE_P(Ports, SocketTest, testing::ValuesIn(kPorts), PortName);
INSTANTIATE_TEST_SUITE_P(Ports, SocketTlsTest, testing::ValuesIn(kPorts), PortName);

}  // namespace
}  // namespace vesko
