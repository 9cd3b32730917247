#include <memory>
#include <utility>

#include "desktop/common/StreamSocket.h"
#include "desktop/windows/WindowsDesktop.h"
#include "desktop/windows/events/Background.h"
#include "desktop/windows/socket/WinLookup.h"
#include "desktop/windows/socket/WinTcpStream.h"
#include "desktop/windows/socket/WinTlsStream.h"

namespace vesko {
namespace {

class WinStreams final : public Streams {
 public:
  WinStreams(EventSources& sources, const std::string& certificate_file)
      : certificate_file_(certificate_file), tcp_(sources) {}

  void LookUp(const Text& host, uint16_t port, std::function<void(int32_t error)> done) override {
    host_ = host;
    auto lookup = std::make_shared<HostLookup>(HostLookup{kSocketTryAgain, false, {}});
    background_.Start(
        [lookup, name = NetworkName(host), port] { *lookup = LookUpHost(name, port); },
        [this, lookup, done = std::move(done)] {
          found_ = std::move(*lookup);
          done(found_.error);
        });
  }

  void Later(std::function<void()> call) override {
    background_.Start([] {}, std::move(call));
  }

  void Open(uint16_t local_port, bool tls, StreamListener& listener) override {
    if (tls) NewTlsStream(listener);
    tcp_.Open(tls ? *tls_ : listener, std::move(found_.addresses), local_port);
  }

  void Send(std::string_view bytes) override { tls_ ? tls_->Send(bytes) : tcp_.Send(bytes); }

  void Close() override {
    background_.Cancel();
    tls_.reset();  // sends its last record by TCP
    tcp_.Close();
  }

 private:
  void NewTlsStream(StreamListener& listener) {
    const std::wstring name = NetworkName(host_);
    ServerIdentity server{{name.begin(), name.end()}, {}};
    if (found_.is_address) server.address = found_.addresses.front().Bytes();
    tls_ = std::make_unique<WinTlsStream>(
        tcp_, background_, WinTlsStream::Peer{host_, std::move(server), certificate_file_},
        listener);
  }

  const WinsockUse winsock_;
  const std::string certificate_file_;
  Text host_;
  HostLookup found_{};
  Background background_;
  WinTcpStream tcp_;
  std::unique_ptr<WinTlsStream> tls_;  // over tcp_, on a TLS port
};

}  // namespace

std::unique_ptr<Socket> MakeWinSocket(const Locale& locale, EventSources& sources,
                                      const std::string& certificate_file,
                                      std::vector<int32_t> tls_ports) {
  return std::make_unique<StreamSocket>(locale, std::move(tls_ports),
                                        std::make_unique<WinStreams>(sources, certificate_file));
}

}  // namespace vesko
