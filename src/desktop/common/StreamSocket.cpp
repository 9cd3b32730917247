#include "desktop/common/StreamSocket.h"

#include <algorithm>
#include <utility>

#include "base/RunTimeError.h"
#include "desktop/common/SocketMessages.h"

namespace vesko {
namespace {

bool IsPort(int32_t port) { return port >= 0 && port <= 0xFFFF; }

}  // namespace

StreamSocket::StreamSocket(const Locale& locale, std::vector<int32_t> tls_ports,
                           std::unique_ptr<Streams> streams)
    : locale_(locale),
      decoder_(locale.NewDecoder()),
      tls_ports_(std::move(tls_ports)),
      streams_(std::move(streams)) {}

StreamSocket::~StreamSocket() { streams_->Close(); }

void StreamSocket::Connect(const Text& host, int32_t port) {
  if (state_ != SocketState::kClosed) throw RunTimeError(kSocketInvalidState);
  state_ = SocketState::kResolvingHost;
  port_ = port;
  if (host.empty()) return streams_->Later([this] { FailWith(kSocketHostNotFound); });
  if (port == 0 || !IsPort(port) || !IsPort(local_port_)) {
    return streams_->Later([this] { FailWith(kSocketAddressNotAvailable); });
  }
  streams_->LookUp(host, static_cast<uint16_t>(port), [this](int32_t error) { LookedUp(error); });
}

void StreamSocket::SendData(TextView text) {
  if (state_ != SocketState::kConnected) throw RunTimeError(kSocketWrongState);
  streams_->Send(locale_.ToBytes(text));
}

Text StreamSocket::GetData() { return std::exchange(text_, {}); }

void StreamSocket::Close() {
  streams_->Close();
  text_.clear();
  decoder_->Reset();
  bytes_received_ = 0;
  state_ = SocketState::kClosed;
}

void StreamSocket::LookedUp(int32_t error) {
  if (error != 0) return FailWith(error);
  state_ = SocketState::kConnecting;
  streams_->Open(static_cast<uint16_t>(local_port_), IsTlsPort(), *this);
}

bool StreamSocket::IsTlsPort() const {
  return std::find(tls_ports_.begin(), tls_ports_.end(), port_) != tls_ports_.end();
}

void StreamSocket::FailWith(int32_t number) { Failed(number, SocketErrorText(number)); }

void StreamSocket::Opened() { state_ = SocketState::kConnected; }

void StreamSocket::BytesArrived(std::string_view bytes) {
  bytes_received_ += bytes.size();
  Text text = decoder_->Decode(bytes);
  if (text_.empty()) {
    text_ = std::move(text);
  } else {
    text_ += text;
  }
  if (on_data_arrival) on_data_arrival();
}

void StreamSocket::PeerClosed() {
  state_ = SocketState::kClosing;
  if (on_data_arrival) on_data_arrival();
}

void StreamSocket::Failed(int32_t number, const Text& description) {
  state_ = SocketState::kError;
  if (on_error) on_error(number, description);
}

}  // namespace vesko
