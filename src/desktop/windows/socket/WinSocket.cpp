#include <memory>
#include <utility>

#include "desktop/common/StreamSocket.h"
#include "desktop/windows/WindowsDesktop.h"
#include "desktop/windows/events/WinBackground.h"
#include "desktop/windows/socket/WinLookup.h"
#include "desktop/windows/socket/WinTcpStream.h"
#include "desktop/windows/socket/WinTlsStream.h"

namespace vesko {
namespace {

class WinStreams final : public Streams {
 public:
  WinStreams(EventSources& sources, Background& background, const std::string& certificate_file)
      : background_(background), certificate_file_(certificate_file), tcp_(sources) {}

  void Open(Destination destination, StreamListener& listener) override {
    if (destination.tls) NewTlsStream(destination, listener);
    tcp_.Open(destination.tls ? *tls_ : listener, std::move(destination.found.addresses),
              destination.local_port);
  }

  void Send(std::string_view bytes) override { tls_ ? tls_->Send(bytes) : tcp_.Send(bytes); }

  void Close() override {
    tls_.reset();  // sends its last record by TCP
    tcp_.Close();
  }

 private:
  void NewTlsStream(const Destination& destination, StreamListener& listener) {
    const std::wstring name = NetworkName(destination.host);
    ServerIdentity server{{name.begin(), name.end()}, destination.found.literal};
    WinTlsStream::Peer peer{destination.host, std::move(server), certificate_file_};
    tls_ = std::make_unique<WinTlsStream>(tcp_, background_, std::move(peer), listener);
  }

  const WinsockUse winsock_;
  Background& background_;
  const std::string certificate_file_;
  WinTcpStream tcp_;
  std::unique_ptr<WinTlsStream> tls_;  // over tcp_, on a TLS port
};

}  // namespace

std::unique_ptr<Socket> MakeWinSocket(const Locale& locale, EventSources& sources,
                                      const std::string& certificate_file,
                                      std::vector<int32_t> tls_ports) {
  auto background = std::make_unique<WinBackground>();
  auto streams = std::make_unique<WinStreams>(sources, *background, certificate_file);
  return std::make_unique<StreamSocket>(locale, std::move(tls_ports), LookUpHost,
                                        std::move(background), std::move(streams));
}

}  // namespace vesko
