#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "desktop/LoopbackPeer.h"
#include "platform/Locale.h"
#include "platform/Socket.h"
#include "support/TestLocale.h"

namespace vesko {

// What the platform's own file beside this one gives to the tests.

/// A socket of the platform's port, with its own ports of TLS and further authorities.
std::unique_ptr<Socket> MakeTestSocket(const Locale& locale, const std::string& certificate_file,
                                       std::vector<int32_t> tls_ports);

/// Lets the event loop of that port turn once.
void TurnEventLoop(std::chrono::milliseconds longest_wait);

/// Whatever a connection could leave open in the process.
size_t OpenDescriptors();

/// False where the system may show a reset as the end of the connection to one that only listens.
bool SystemTellsResets();

/// What this process has used so far.
std::chrono::milliseconds ProcessorTime();

class SocketTest : public testing::Test {
 protected:
  SocketTest() {
    TurnEventLoop(std::chrono::milliseconds(0));
    NewSocket();
  }

  void NewSocket(int code_page = kCodePageUtf8, const std::string& certificate_file = {},
                 std::vector<int32_t> tls_ports = {}) {
    socket_.reset();
    locale_ = MakeTestLocale(code_page);
    socket_ = MakeTestSocket(*locale_, certificate_file, std::move(tls_ports));
    socket_->on_data_arrival = [this] {
      ++arrivals_;
      if (take_data_) text_ += socket_->GetData();
    };
    socket_->on_error = [this](int32_t number, const Text& description) {
      errors_.push_back(number);
      message_ = description;
    };
  }

  static constexpr std::chrono::seconds kPatience{60};

  template <typename Condition>
  bool RunUntil(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
      if (std::chrono::steady_clock::now() > end) return false;
      TurnEventLoop(std::chrono::milliseconds(20));
    }
    return true;
  }

  void RunFor(std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) TurnEventLoop(std::chrono::milliseconds(10));
  }

  bool RunToState(SocketState state) {
    return RunUntil([&] { return socket_->State() == state; });
  }

  // Of the connection, good or bad.
  bool RunToEnd() {
    return RunUntil([&] {
      return socket_->State() == SocketState::kError || socket_->State() == SocketState::kClosing;
    });
  }

  // A closed socket may lie in the event loop for some turns yet.
  // The look-up of names keeps one or two for the process; a leak would be one a connection.
  static constexpr size_t kOfTheProcess = 2;
  bool RunToDescriptors(size_t count) {
    return RunUntil([&] { return OpenDescriptors() <= count + kOfTheProcess; });
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
  Text message_;
};

}  // namespace vesko
