#include <memory>
#include <utility>

#include "desktop/common/StreamSocket.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/socket/HostLookup.h"
#include "desktop/linux/socket/QtBackground.h"
#include "desktop/linux/socket/TcpStream.h"
#include "desktop/linux/socket/TlsStream.h"

namespace vesko {
namespace {

class LinuxStreams final : public Streams {
 public:
  explicit LinuxStreams(const std::string& certificate_file)
      : certificate_file_(certificate_file) {}

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
    // Reading the authorities takes a while, so only the first TLS connection does it.
    if (!tls_context_) tls_context_ = std::make_unique<TlsContext>(certificate_file_);
    ServerIdentity server{NetworkName(destination.host), destination.found.literal};
    tls_ = std::make_unique<TlsStream>(*tls_context_, tcp_, destination.host, std::move(server),
                                       listener);
  }

  const std::string certificate_file_;
  std::unique_ptr<TlsContext> tls_context_;
  TcpStream tcp_;
  std::unique_ptr<TlsStream> tls_;  // over tcp_, on a TLS port
};

}  // namespace

std::unique_ptr<Socket> MakeQtSocket(const Locale& locale, const std::string& certificate_file,
                                     std::vector<int32_t> tls_ports) {
  return std::make_unique<StreamSocket>(locale, std::move(tls_ports), LookUpHost,
                                        std::make_unique<QtBackground>(),
                                        std::make_unique<LinuxStreams>(certificate_file));
}

}  // namespace vesko
