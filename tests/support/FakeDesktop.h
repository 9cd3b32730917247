#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "base/RunTimeError.h"
#include "component/Desktop.h"
#include "support/FakeMachine.h"

namespace vesko {

/// A FakeMachine as the component sees it.
class FakeDesktop : public FakeMachine, public Desktop {
 public:
  struct NotingSound : Sound {
    int OutputDevices() override { return 1; }
    void Play(const Text& path) override {
      played.push_back(path);
      throw RunTimeError(kInvalidProcedureCall);  // which stops nothing
    }
    std::vector<Text> played;
  };

  ~FakeDesktop() override {
    if (on_end) on_end();
  }

  const Locale& GetLocale() override { return *locale; }
  Registry& GetRegistry() override { return registry; }
  std::unique_ptr<Socket> NewSocket() override { return std::make_unique<SocketHandle>(socket); }
  Sound& GetSound() override { return sound; }
  Shell& GetShell() override { return shell; }
  const Clock& GetClock() override { return clock; }
  Toolkit& GetToolkit() override { return toolkit; }

  NotingSound sound;
  std::function<void()> on_end;

 private:
  /// Passes on to the machine's socket, which outlives it.
  class SocketHandle : public Socket {
   public:
    explicit SocketHandle(Socket& socket) : socket_(socket) {
      socket_.on_data_arrival = [this] { on_data_arrival(); };
      socket_.on_error = [this](int32_t number, const Text& words) { on_error(number, words); };
    }
    SocketState State() const override { return socket_.State(); }
    void SetLocalPort(int32_t port) override { socket_.SetLocalPort(port); }
    void Connect(const Text& host, int32_t port) override { socket_.Connect(host, port); }
    void SendData(TextView text) override { socket_.SendData(text); }
    Text GetData() override { return socket_.GetData(); }
    uint64_t BytesReceived() const override { return socket_.BytesReceived(); }
    void Close() override { socket_.Close(); }

   private:
    Socket& socket_;
  };
};

}  // namespace vesko
