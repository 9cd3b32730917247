#include "desktop/common/StreamSocket.h"

#include <algorithm>
#include <new>
#include <utility>

#include "base/RunTimeError.h"
#include "desktop/common/SocketMessages.h"

namespace vesko {
namespace {

bool IsPort(int32_t port) { return port >= 0 && port <= 0xFFFF; }

}  // namespace

// No exception may reach the event loop, which makes the calls.
template <typename Step>
void StreamSocket::Contain(Step step) {
  try {
    step();
  } catch (const std::bad_alloc&) {
    streams_->Close();
    text_ = Text();
    FailWith(kSocketNoMemory);
  }
}

StreamSocket::StreamSocket(const Locale& locale, std::vector<int32_t> tls_ports,
                           LookUpFunction look_up, std::unique_ptr<Background> background,
                           std::unique_ptr<Streams> streams)
    : locale_(locale),
      decoder_(locale.NewDecoder()),
      tls_ports_(std::move(tls_ports)),
      look_up_(look_up),
      background_(std::move(background)),
      streams_(std::move(streams)) {}

StreamSocket::~StreamSocket() { Close(); }

void StreamSocket::Connect(const Text& host, int32_t port) {
  if (state_ != SocketState::kClosed) throw RunTimeError(kSocketInvalidState);
  state_ = SocketState::kResolvingHost;
  host_ = host;
  port_ = port;
  if (host.empty()) return FailLater(kSocketHostNotFound);
  if (port == 0 || !IsPort(port) || !IsPort(local_port_)) {
    return FailLater(kSocketAddressNotAvailable);
  }
  auto lookup = std::make_shared<HostLookup>(HostLookup{kSocketTryAgain, {}, {}});
  background_->Start(
      [=, look_up = look_up_] { *lookup = look_up(host, static_cast<uint16_t>(port)); },
      [this, lookup] { LookedUp(std::move(*lookup)); });
}

void StreamSocket::SendData(TextView text) {
  if (state_ != SocketState::kConnected) throw RunTimeError(kSocketWrongState);
  streams_->Send(locale_.ToBytes(text));
}

Text StreamSocket::GetData() { return std::exchange(text_, {}); }

void StreamSocket::Close() {
  background_->Cancel();
  streams_->Close();
  text_.clear();
  decoder_->Reset();
  bytes_received_ = 0;
  state_ = SocketState::kClosed;
}

void StreamSocket::LookedUp(HostLookup lookup) {
  if (lookup.error != 0) return FailWith(lookup.error);
  state_ = SocketState::kConnecting;
  Contain([&] {
    streams_->Open({host_, std::move(lookup), static_cast<uint16_t>(local_port_), IsTlsPort()},
                   *this);
  });
}

bool StreamSocket::IsTlsPort() const {
  return std::find(tls_ports_.begin(), tls_ports_.end(), port_) != tls_ports_.end();
}

void StreamSocket::FailLater(int32_t number) {
  background_->Start([] {}, [this, number] { FailWith(number); });
}

void StreamSocket::FailWith(int32_t number) { Failed(number, SocketErrorText(number)); }

void StreamSocket::Opened() { state_ = SocketState::kConnected; }

void StreamSocket::BytesArrived(std::string_view bytes) {
  bytes_received_ += bytes.size();
  Contain([&] { Keep(decoder_->Decode(bytes)); });
  if (state_ == SocketState::kConnected && on_data_arrival) on_data_arrival();
}

void StreamSocket::Keep(Text text) {
  if (text_.empty()) {
    text_ = std::move(text);
  } else {
    text_ += text;
  }
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
