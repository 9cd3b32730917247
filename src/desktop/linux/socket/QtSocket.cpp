#include <QHostInfo>
#include <QMetaObject>
#include <QObject>
#include <QString>
#include <algorithm>
#include <optional>
#include <utility>

#include "base/RunTimeError.h"
#include "desktop/common/SocketMessages.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/socket/TcpStream.h"
#include "desktop/linux/socket/TlsStream.h"

namespace vesko {
namespace {

constexpr int kNoLookup = -1;

class QtSocket final : public Socket, public ByteStreamListener {
 private:
  // Wraps a call that the event loop makes later: it comes to nothing when Close was called before,
  // for neither an aborted lookup nor a posted event can be trusted not to arrive.
  template <typename Call>
  auto Current(Call call) {
    return [this, call, connection = connection_](const auto&... arguments) {
      if (connection == connection_) call(arguments...);
    };
  }

 public:
  QtSocket(const Locale& locale, const std::string& certificate_file,
           std::vector<int32_t> tls_ports)
      : locale_(locale),
        decoder_(locale.NewDecoder()),
        certificate_file_(QString::fromStdString(certificate_file)),
        tls_ports_(std::move(tls_ports)) {}

  ~QtSocket() override { Close(); }

  SocketState State() const override { return state_; }
  void SetLocalPort(int32_t port) override { local_port_ = port; }

  void Connect(const Text& host, int32_t port) override {
    if (state_ != SocketState::kClosed) throw RunTimeError(kSocketInvalidState);
    state_ = SocketState::kResolvingHost;
    host_ = QString::fromStdU16String(host);
    port_ = port;
    if (host.empty()) return FailLater(kSocketHostNotFound);
    if (!IsPort(port) || port == 0 || !IsPort(local_port_)) {
      return FailLater(kSocketAddressNotAvailable);
    }
    lookup_ = QHostInfo::lookupHost(host_, &context_,
                                    Current([this](const QHostInfo& info) { LookedUp(info); }));
  }

  void SendData(TextView text) override {
    if (state_ != SocketState::kConnected) throw RunTimeError(kSocketWrongState);
    const std::string bytes = locale_.ToBytes(text);
    tls_ ? tls_->Send(bytes) : tcp_.Send(bytes);
  }

  Text GetData() override { return std::exchange(text_, {}); }

  uint64_t BytesReceived() const override { return received_; }

  void Close() override {
    ++connection_;
    if (lookup_ != kNoLookup) QHostInfo::abortHostLookup(std::exchange(lookup_, kNoLookup));
    tcp_.Close();
    tls_.reset();
    text_.clear();
    decoder_->Reset();
    received_ = 0;
    state_ = SocketState::kClosed;
  }

 private:
  static bool IsPort(int32_t port) { return port >= 0 && port <= 0xFFFF; }

  void FailLater(int32_t number) {
    auto fail = Current([this, number] { Failed(number, SocketErrorText(number)); });
    QMetaObject::invokeMethod(&context_, std::move(fail), Qt::QueuedConnection);
  }

  void LookedUp(const QHostInfo& info) {
    lookup_ = kNoLookup;
    if (info.addresses().isEmpty()) {
      const int32_t number =
          info.error() == QHostInfo::HostNotFound ? kSocketHostNotFound : kSocketTryAgain;
      return Failed(number, SocketErrorText(number));
    }
    state_ = SocketState::kConnecting;
    tcp_.Open(info.addresses(), static_cast<uint16_t>(port_), static_cast<uint16_t>(local_port_));
  }

  void Opened() override {
    const bool secure = std::find(tls_ports_.begin(), tls_ports_.end(), port_) != tls_ports_.end();
    if (!secure || tls_) {
      state_ = SocketState::kConnected;
      return;
    }
    if (!tls_configuration_) tls_configuration_ = TlsClientConfiguration(certificate_file_);
    tls_ = std::make_unique<TlsStream>(tcp_.Release(), host_, *tls_configuration_, context_, *this);
  }

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

  const Locale& locale_;
  std::unique_ptr<TextDecoder> decoder_;
  const QString certificate_file_;
  const std::vector<int32_t> tls_ports_;
  std::optional<QSslConfiguration> tls_configuration_;  // reading the authorities takes a while

  SocketState state_ = SocketState::kClosed;
  uint64_t connection_ = 0;  // running number, taken on by Close
  int lookup_ = kNoLookup;
  QString host_;
  int32_t port_ = 0;
  int32_t local_port_ = 0;
  Text text_;
  uint64_t received_ = 0;  // bytes

  QObject context_;
  TcpStream tcp_{*this};
  std::unique_ptr<TlsStream> tls_;  // over what tcp_ has connected, on a TLS port
};

}  // namespace

std::unique_ptr<Socket> MakeQtSocket(const Locale& locale, const std::string& certificate_file,
                                     std::vector<int32_t> tls_ports) {
  return std::make_unique<QtSocket>(locale, certificate_file, std::move(tls_ports));
}

}  // namespace vesko
