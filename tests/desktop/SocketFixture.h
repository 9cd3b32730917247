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

// Defined by the file of each platform beside this one.

/// A socket of the platform's port, with TLS ports and further authorities of the test.
std::unique_ptr<Socket> MakeTestSocket(const Locale& locale, const std::string& certificate_file,
                                       std::vector<int32_t> tls_ports);

/// Lets the event loop turn once. Returns false when nothing happened in that time.
bool TurnEventLoop(std::chrono::milliseconds longest_wait);

/// How many things are open in the process that a connection could leave open.
size_t OpenDescriptors();

/// False where the system may show a reset to an end that only listens as the end of the
/// connection.
bool SystemTellsResets();

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

  // Until nothing more is on its way. Not to be reached by a socket that keeps the processor busy.
  bool RunToQuiet() {
    return RunUntil([] { return !TurnEventLoop(std::chrono::milliseconds(20)); });
  }

  bool RunToState(SocketState state) {
    return RunUntil([&] { return socket_->State() == state; });
  }

  // To the end of the connection, whether it was closed or failed.
  bool RunToEnd() {
    return RunUntil([&] {
      return socket_->State() == SocketState::kError || socket_->State() == SocketState::kClosing;
    });
  }

  // The look-up of names keeps one or two for the process; a leak would be one for each connection.
  static constexpr size_t kOfTheProcess = 2;
  bool RunToDescriptors(size_t count) {
    return RunUntil([&] { return OpenDescriptors() <= count + kOfTheProcess; });
  }

  bool RunToText(const Text& text) {
    return RunUntil([&] { return text_ == text; });
  }

  // Connects to the peer and lets it accept.
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
