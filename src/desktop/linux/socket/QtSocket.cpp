#include <memory>
#include <utility>

#include "desktop/common/StreamSocket.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/socket/Background.h"
#include "desktop/linux/socket/HostLookup.h"
#include "desktop/linux/socket/TcpStream.h"
#include "desktop/linux/socket/TlsStream.h"

namespace vesko {
namespace {

class LinuxStreams final : public Streams {
 public:
  explicit LinuxStreams(const std::string& certificate_file)
      : certificate_file_(certificate_file) {}

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
    // Reading the authorities takes a while, so only a TLS connection does it, and only the first.
    if (!tls_context_) tls_context_ = std::make_unique<TlsContext>(certificate_file_);
    ServerIdentity server{NetworkName(host_), {}};
    if (found_.is_address) server.address = found_.addresses.front().Bytes();
    tls_ = std::make_unique<TlsStream>(*tls_context_, tcp_, host_, std::move(server), listener);
  }

  const std::string certificate_file_;
  std::unique_ptr<TlsContext> tls_context_;
  Text host_;
  HostLookup found_{};
  Background background_;
  TcpStream tcp_;
  std::unique_ptr<TlsStream> tls_;  // over tcp_, on a TLS port
};

}  // namespace

std::unique_ptr<Socket> MakeQtSocket(const Locale& locale, const std::string& certificate_file,
                                     std::vector<int32_t> tls_ports) {
  return std::make_unique<StreamSocket>(locale, std::move(tls_ports),
                                        std::make_unique<LinuxStreams>(certificate_file));
}

}  // namespace vesko
