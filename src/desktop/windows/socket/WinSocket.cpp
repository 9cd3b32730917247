#include <algorithm>
#include <utility>

#include "base/RunTimeError.h"
#include "desktop/common/SocketMessages.h"
#include "desktop/windows/WindowsDesktop.h"
#include "desktop/windows/events/Background.h"
#include "desktop/windows/socket/WinLookup.h"
#include "desktop/windows/socket/WinTcpStream.h"
#include "desktop/windows/socket/WinTlsStream.h"

namespace vesko {
namespace {

class WinSocket final : public Socket, public ByteStreamListener {
 public:
  WinSocket(const Locale& locale, EventSources& sources, const std::string& certificate_file,
            std::vector<int32_t> tls_ports)
      : locale_(locale),
        decoder_(locale.NewDecoder()),
        certificate_file_(certificate_file),
        tls_ports_(std::move(tls_ports)),
        tcp_(sources) {}

  ~WinSocket() override { Close(); }

  SocketState State() const override { return state_; }
  void SetLocalPort(int32_t port) override { local_port_ = port; }

  void Connect(const Text& host, int32_t port) override {
    if (state_ != SocketState::kClosed) throw RunTimeError(kSocketInvalidState);
    state_ = SocketState::kResolvingHost;
    host_ = host;
    port_ = port;
    auto lookup = std::make_shared<HostLookup>(HostLookup{kSocketTryAgain, {}});
    if (!host.empty() && (port == 0 || !IsPort(port) || !IsPort(local_port_))) {
      lookup->error = kSocketAddressNotAvailable;
      return background_.Start([] {}, [this, lookup] { LookedUp(std::move(*lookup)); });
    }
    background_.Start(
        [lookup, name = NetworkName(host), port] { *lookup = LookUpHost(name, port); },
        [this, lookup] { LookedUp(std::move(*lookup)); });
  }

  void SendData(TextView text) override {
    if (state_ != SocketState::kConnected) throw RunTimeError(kSocketWrongState);
    const std::string bytes = locale_.ToBytes(text);
    tls_ ? tls_->Send(bytes) : tcp_.Send(bytes);
  }

  Text GetData() override { return std::exchange(text_, {}); }

  uint64_t BytesReceived() const override { return received_; }

  void Close() override {
    background_.Cancel();
    tcp_.Close();
    tls_.reset();
    text_.clear();
    decoder_->Reset();
    received_ = 0;
    state_ = SocketState::kClosed;
  }

 private:
  static bool IsPort(int32_t port) { return port >= 0 && port <= 0xFFFF; }

  bool IsTlsPort() const {
    return std::find(tls_ports_.begin(), tls_ports_.end(), port_) != tls_ports_.end();
  }

  void LookedUp(HostLookup lookup) {
    if (lookup.error != 0) return Failed(lookup.error, SocketErrorText(lookup.error));
    state_ = SocketState::kConnecting;
    ByteStreamListener* listener = this;
    if (IsTlsPort()) {
      WinTlsStream::Peer peer{host_, NetworkName(host_), certificate_file_};
      tls_ = std::make_unique<WinTlsStream>(tcp_, background_, std::move(peer), *this);
      listener = tls_.get();
    }
    tcp_.Open(*listener, std::move(lookup.addresses), static_cast<uint16_t>(local_port_));
  }

  void Opened() override { state_ = SocketState::kConnected; }

  void BytesArrived(std::string_view bytes) override {
    received_ += bytes.size();
    Text text = decoder_->Decode(bytes);
    if (text_.empty()) {
      text_ = std::move(text);
    } else {
      text_ += text;
    }
    if (on_data_arrival) on_data_arrival();
  }

  void PeerClosed() override {
    state_ = SocketState::kClosing;
    if (on_data_arrival) on_data_arrival();
  }

  void Failed(int32_t number, const Text& description) override {
    state_ = SocketState::kError;
    if (on_error) on_error(number, description);
  }

  const WinsockUse winsock_;
  const Locale& locale_;
  std::unique_ptr<TextDecoder> decoder_;
  const std::string certificate_file_;
  const std::vector<int32_t> tls_ports_;

  SocketState state_ = SocketState::kClosed;
  Text host_;
  int32_t port_ = 0;
  int32_t local_port_ = 0;
  Text text_;
  uint64_t received_ = 0;  // bytes

  Background background_;
  WinTcpStream tcp_;
  std::unique_ptr<WinTlsStream> tls_;  // over tcp_, on a TLS port
};

}  // namespace

std::unique_ptr<Socket> MakeWinSocket(const Locale& locale, EventSources& sources,
                                      const std::string& certificate_file,
                                      std::vector<int32_t> tls_ports) {
  return std::make_unique<WinSocket>(locale, sources, certificate_file, std::move(tls_ports));
}

}  // namespace vesko
