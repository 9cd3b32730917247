#include "desktop/linux/socket/TlsStream.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <utility>

#include "desktop/common/SocketMessages.h"
#include "platform/Socket.h"

namespace vesko {
namespace {

constexpr size_t kPlainSize = size_t{256} * 1024;

}  // namespace

TlsStream::TlsStream(TlsContext& context, TcpStream& tcp, Text host, ServerIdentity server,
                     StreamListener& listener)
    : tcp_(tcp),
      host_(std::move(host)),
      check_{std::move(server), {}},
      listener_(listener),
      ssl_(context.NewConnection(check_)),
      in_(SSL_get_rbio(ssl_.get())),
      out_(SSL_get_wbio(ssl_.get())),
      plain_(std::make_unique_for_overwrite<char[]>(kPlainSize)) {}

TlsStream::~TlsStream() {
  ERR_clear_error();
  if (SSL_is_init_finished(ssl_.get()) && SSL_shutdown(ssl_.get()) >= 0) SendRecords();
}

void TlsStream::Send(std::string_view bytes) {
  size_t sent = 0;
  ERR_clear_error();
  SSL_write_ex(ssl_.get(), bytes.data(), bytes.size(), &sent);
  SendRecords();
}

void TlsStream::Opened() { Handshake(); }

void TlsStream::BytesArrived(std::string_view bytes) {
  if (phase_ == Phase::kOver) return;
  if (!std::exchange(heard_, true) && !LooksLikeTls(bytes)) {
    return Abort(kSocketConnectionAborted, Text(kNoTlsMessage));
  }
  const int size = static_cast<int>(bytes.size());
  if (BIO_write(in_, bytes.data(), size) != size) {
    return Abort(kSocketNoMemory, SocketErrorText(kSocketNoMemory));
  }
  phase_ == Phase::kOpen ? Decrypt() : Handshake();
}

void TlsStream::PeerClosed() {
  if (phase_ == Phase::kHandshake) {
    return Abort(kSocketConnectionAborted, Text(kClosedInHandshakeMessage));
  }
  if (std::exchange(phase_, Phase::kOver) == Phase::kOpen) listener_.PeerClosed();
}

void TlsStream::Failed(int32_t number, const Text& description) { Abort(number, description); }

void TlsStream::Handshake() {
  ERR_clear_error();
  const int outcome = SSL_get_error(ssl_.get(), SSL_do_handshake(ssl_.get()));
  SendRecords();
  if (outcome == SSL_ERROR_WANT_READ) return;
  if (outcome != SSL_ERROR_NONE) return HandshakeFailed();
  phase_ = Phase::kOpen;
  const std::weak_ptr alive(alive_);
  listener_.Opened();
  if (!alive.expired()) Decrypt();
}

void TlsStream::HandshakeFailed() {
  if (!check_.faults.empty()) {
    return Abort(kSocketConnectionAborted, RefusedCertificateText(host_, check_.faults));
  }
  Abort(kSocketConnectionAborted, Text(kNoCommonTlsMessage));
}

// All that has arrived goes to the listener at once: many small records cost one call.
void TlsStream::Decrypt() {
  const std::weak_ptr alive(alive_);
  int outcome = SSL_ERROR_NONE;
  while (outcome == SSL_ERROR_NONE) {
    const std::string_view plain = ReadPlain(outcome);
    SendRecords();
    if (!plain.empty()) listener_.BytesArrived(plain);
    if (alive.expired()) return;
  }
  if (outcome == SSL_ERROR_WANT_READ) return;
  if (outcome == SSL_ERROR_ZERO_RETURN) return PeerClosed();
  Abort(kSocketConnectionReset, SocketErrorText(kSocketConnectionReset));
}

std::string_view TlsStream::ReadPlain(int& outcome) {
  size_t size = 0;
  ERR_clear_error();
  while (size < kPlainSize && outcome == SSL_ERROR_NONE) {
    size_t piece = 0;
    const int result = SSL_read_ex(ssl_.get(), plain_.get() + size, kPlainSize - size, &piece);
    outcome = SSL_get_error(ssl_.get(), result);
    size += piece;
  }
  return {plain_.get(), size};
}

void TlsStream::SendRecords() {
  char* records = nullptr;
  const long size = BIO_get_mem_data(out_, &records);
  if (size <= 0) return;
  tcp_.Send({records, static_cast<size_t>(size)});
  BIO_reset(out_);
}

void TlsStream::Abort(int32_t number, const Text& description) {
  if (std::exchange(phase_, Phase::kOver) == Phase::kOver) return;
  tcp_.Close();
  listener_.Failed(number, description);
}

}  // namespace vesko
