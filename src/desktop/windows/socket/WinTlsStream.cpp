#include "desktop/windows/socket/WinTlsStream.h"

#define SCHANNEL_USE_BLACKLISTS
#include <subauth.h>
// After subauth.h, whose types it uses.
#include <schannel.h>

#include <algorithm>

#include "platform/Socket.h"

namespace vesko {
namespace {

constexpr DWORD kRequests = ISC_REQ_SEQUENCE_DETECT | ISC_REQ_REPLAY_DETECT |
                            ISC_REQ_CONFIDENTIALITY | ISC_REQ_EXTENDED_ERROR |
                            ISC_REQ_ALLOCATE_MEMORY | ISC_REQ_STREAM |
                            ISC_REQ_MANUAL_CRED_VALIDATION;
constexpr DWORD kHow =
    SCH_CRED_MANUAL_CRED_VALIDATION | SCH_CRED_NO_DEFAULT_CREDS | SCH_USE_STRONG_CRYPTO;
constexpr char kAlertRecord = 0x15;
constexpr DWORD kVersions = SP_PROT_TLS1_2_CLIENT | SP_PROT_TLS1_3_CLIENT;

bool Acquire(void* how, CredHandle& credentials) {
  wchar_t package[] = UNISP_NAME_W;
  return AcquireCredentialsHandleW(nullptr, package, SECPKG_CRED_OUTBOUND, nullptr, how, nullptr,
                                   nullptr, &credentials, nullptr) == SEC_E_OK;
}

// Systems before TLS 1.3 know only the older structure.
bool AcquireTlsCredentials(CredHandle& credentials) {
  TLS_PARAMETERS parameters{};
  parameters.grbitDisabledProtocols = ~kVersions;
  SCH_CREDENTIALS how{};
  how.dwVersion = SCH_CREDENTIALS_VERSION;
  how.dwFlags = kHow;
  how.cTlsParameters = 1;
  how.pTlsParameters = &parameters;
  if (Acquire(&how, credentials)) return true;
  SCHANNEL_CRED older{};
  older.dwVersion = SCHANNEL_CRED_VERSION;
  older.grbitEnabledProtocols = SP_PROT_TLS1_2_CLIENT;
  older.dwFlags = kHow;
  return Acquire(&older, credentials);
}

// The system's settings may change what was asked for.
bool IsNewEnough(CtxtHandle& context) {
  SecPkgContext_ConnectionInfo info{};
  QueryContextAttributesW(&context, SECPKG_ATTR_CONNECTION_INFO, &info);
  return (info.dwProtocol & kVersions) != 0;
}

SecBuffer Buffer(ULONG type, char* data = nullptr, size_t size = 0) {
  return {static_cast<ULONG>(size), type, data};
}

}  // namespace

WinTlsStream::WinTlsStream(WinTcpStream& tcp, Background& background, Peer peer,
                           StreamListener& listener)
    : tcp_(tcp),
      background_(background),
      peer_(std::move(peer)),
      listener_(listener),
      has_credentials_(AcquireTlsCredentials(credentials_)) {}

WinTlsStream::~WinTlsStream() {
  if (was_open_) SayGoodBye();
  if (has_context_) DeleteSecurityContext(&context_);
  if (has_credentials_) FreeCredentialsHandle(&credentials_);
}

void WinTlsStream::Send(std::string_view bytes) {
  if (phase_ != Phase::kOpen) {
    waiting_ += bytes;
    return;
  }
  const std::string records = Encrypted(bytes);
  if (!records.empty()) tcp_.Send(records);
}

void WinTlsStream::BytesArrived(std::string_view bytes) {
  if (phase_ == Phase::kOver) return;
  received_ += bytes;
  Advance();
}

void WinTlsStream::PeerClosed() {
  if (phase_ == Phase::kOver) return;
  if (!was_open_) return Abort(kSocketConnectionAborted, Text(kClosedInHandshakeMessage));
  phase_ = Phase::kOver;
  listener_.PeerClosed();
}

void WinTlsStream::Failed(int32_t number, const Text& description) { Abort(number, description); }

void WinTlsStream::Advance() {
  if (phase_ == Phase::kHandshake) return Handshake();
  if (phase_ == Phase::kOpen) Decrypt();
}

void WinTlsStream::Handshake() {
  if (has_context_ && !was_open_ && !LooksLikeTls(received_)) {
    return Abort(kSocketConnectionAborted, Text(kNoTlsMessage));
  }
  SECURITY_STATUS status = SEC_E_UNSUPPORTED_FUNCTION;
  size_t before;
  do {
    before = received_.size();
    if (has_credentials_) status = NextToken();
  } while (status == SEC_I_CONTINUE_NEEDED && !received_.empty() && received_.size() < before);
  if (status == SEC_E_OK) return CheckCertificate();
  if (status == SEC_I_CONTINUE_NEEDED || status == SEC_E_INCOMPLETE_MESSAGE) return;
  Abort(kSocketConnectionAborted, Text(kNoCommonTlsMessage));
}

// One step of the handshake: consumes what it can of `received_` and sends the answer.
SECURITY_STATUS WinTlsStream::NextToken() {
  SecBuffer in[] = {Buffer(SECBUFFER_TOKEN, received_.data(), received_.size()),
                    Buffer(SECBUFFER_EMPTY)};
  SecBufferDesc in_list{SECBUFFER_VERSION, 2, in};
  const bool first = !has_context_;
  const SECURITY_STATUS status = SendToken(first ? nullptr : &in_list);
  if (status == SEC_I_INCOMPLETE_CREDENTIALS && !std::exchange(anonymous_, true)) {
    return NextToken();
  }
  if (!first && (status == SEC_I_CONTINUE_NEEDED || status == SEC_E_OK)) KeepTail(in[1]);
  return status;
}

SECURITY_STATUS WinTlsStream::SendToken(SecBufferDesc* input) {
  SecBuffer out[] = {Buffer(SECBUFFER_TOKEN)};
  SecBufferDesc out_list{SECBUFFER_VERSION, 1, out};
  const std::string server = AnnouncedName(peer_.server);
  std::wstring name(server.begin(), server.end());
  ULONG granted = 0;
  const SECURITY_STATUS status = InitializeSecurityContextW(
      &credentials_, has_context_ ? &context_ : nullptr, name.empty() ? nullptr : name.data(),
      kRequests | (anonymous_ ? ISC_REQ_USE_SUPPLIED_CREDS : 0), 0, 0, input, 0, &context_,
      &out_list, &granted, nullptr);
  has_context_ = has_context_ || status == SEC_I_CONTINUE_NEEDED || status == SEC_E_OK;
  if (out[0].pvBuffer) {
    if (out[0].cbBuffer > 0) tcp_.Send({static_cast<char*>(out[0].pvBuffer), out[0].cbBuffer});
    FreeContextBuffer(out[0].pvBuffer);
  }
  return status;
}

void WinTlsStream::CheckCertificate() {
  const CERT_CONTEXT* sent = nullptr;
  QueryContextAttributesW(&context_, SECPKG_ATTR_REMOTE_CERT_CONTEXT, &sent);
  std::shared_ptr<const CERT_CONTEXT> certificate(CertificatePtr{sent});
  if (!certificate || !IsNewEnough(context_) ||
      QueryContextAttributesW(&context_, SECPKG_ATTR_STREAM_SIZES, &sizes_) != SEC_E_OK) {
    return Abort(kSocketConnectionAborted, Text(kNoCommonTlsMessage));
  }
  // A later handshake, often just for a new session ticket, usually shows the same certificate.
  std::string encoded(reinterpret_cast<const char*>(sent->pbCertEncoded), sent->cbCertEncoded);
  if (encoded == accepted_) return Checked({});
  accepted_ = std::move(encoded);
  phase_ = Phase::kChecking;
  auto faults = std::make_shared<std::vector<CertificateFault>>(1, CertificateFault::kOther);
  background_.Start(
      [faults, certificate, peer = peer_] {
        *faults = CheckServerCertificate(*certificate, peer.server, peer.authorities_file);
      },
      [this, faults] { Checked(*faults); });
}

void WinTlsStream::Checked(const std::vector<CertificateFault>& faults) {
  if (!faults.empty()) {
    return Abort(kSocketConnectionAborted, RefusedCertificateText(peer_.host, faults));
  }
  phase_ = Phase::kOpen;
  const std::weak_ptr alive(alive_);
  if (!std::exchange(was_open_, true)) listener_.Opened();
  if (alive.expired()) return;
  if (!waiting_.empty()) Send(std::exchange(waiting_, {}));
  Decrypt();
}

// A peer that does not read any more misses it, which does no harm.
void WinTlsStream::SayGoodBye() {
  DWORD shutdown = SCHANNEL_SHUTDOWN;
  SecBuffer in[] = {{sizeof shutdown, SECBUFFER_TOKEN, &shutdown}};
  SecBufferDesc in_list{SECBUFFER_VERSION, 1, in};
  if (ApplyControlToken(&context_, &in_list) == SEC_E_OK) SendToken(nullptr);
}

// All that has arrived goes to the listener at once: many small records cost one call.
void WinTlsStream::Decrypt() {
  std::string plain;
  SECURITY_STATUS status = SEC_E_OK;
  while (!received_.empty() && status == SEC_E_OK) status = DecryptRecord(plain);
  const std::weak_ptr alive(alive_);
  if (status == SEC_I_RENEGOTIATE) phase_ = Phase::kHandshake;
  if (!plain.empty()) listener_.BytesArrived(plain);
  if (alive.expired() || status == SEC_E_OK || status == SEC_E_INCOMPLETE_MESSAGE) return;
  if (status == SEC_I_RENEGOTIATE) return Handshake();
  if (status == SEC_I_CONTEXT_EXPIRED) return PeerClosed();
  Abort(kSocketConnectionReset, SocketErrorText(kSocketConnectionReset));
}

SECURITY_STATUS WinTlsStream::DecryptRecord(std::string& plain) {
  SecBuffer buffers[] = {Buffer(SECBUFFER_DATA, received_.data(), received_.size()),
                         Buffer(SECBUFFER_EMPTY), Buffer(SECBUFFER_EMPTY), Buffer(SECBUFFER_EMPTY)};
  SecBufferDesc list{SECBUFFER_VERSION, 4, buffers};
  const bool is_alert = received_[0] == kAlertRecord;
  const SECURITY_STATUS status = DecryptMessage(&context_, &list, 0, nullptr);
  if (status == SEC_E_INCOMPLETE_MESSAGE || FAILED(status)) return status;
  const SecBuffer* tail = &buffers[0];
  for (const SecBuffer& buffer : buffers) {
    if (buffer.BufferType == SECBUFFER_EXTRA) tail = &buffer;
    if (buffer.BufferType == SECBUFFER_DATA && status == SEC_E_OK) {
      plain.append(static_cast<const char*>(buffer.pvBuffer), buffer.cbBuffer);
    }
  }
  KeepTail(*tail);
  // Wine does not report a close_notify: the record is just empty. No other alert that is not an
  // error comes from a server.
  return status == SEC_E_OK && is_alert ? SEC_I_CONTEXT_EXPIRED : status;
}

// The library leaves the start of the next record at the end of its input.
void WinTlsStream::KeepTail(const SecBuffer& buffer) {
  const size_t size = buffer.BufferType == SECBUFFER_EXTRA ? buffer.cbBuffer : 0;
  received_.erase(0, received_.size() - std::min(size, received_.size()));
}

std::string WinTlsStream::Encrypted(std::string_view bytes) {
  std::string records;
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, sizes_.cbMaximumMessage);
    bytes.remove_prefix(piece.size());
    std::string record(sizes_.cbHeader, '\0');
    record.append(piece).append(sizes_.cbTrailer, '\0');
    char* data = record.data() + sizes_.cbHeader;
    SecBuffer buffers[] = {Buffer(SECBUFFER_STREAM_HEADER, record.data(), sizes_.cbHeader),
                           Buffer(SECBUFFER_DATA, data, piece.size()),
                           Buffer(SECBUFFER_STREAM_TRAILER, data + piece.size(), sizes_.cbTrailer),
                           Buffer(SECBUFFER_EMPTY)};
    SecBufferDesc list{SECBUFFER_VERSION, 4, buffers};
    if (EncryptMessage(&context_, 0, &list, 0) != SEC_E_OK) {
      tcp_.FailLater(WSAECONNRESET);
      return {};
    }
    for (const SecBuffer& buffer : {buffers[0], buffers[1], buffers[2]}) {
      records.append(static_cast<const char*>(buffer.pvBuffer), buffer.cbBuffer);
    }
  }
  return records;
}

void WinTlsStream::Abort(int32_t number, const Text& description) {
  if (std::exchange(phase_, Phase::kOver) == Phase::kOver) return;
  tcp_.Close();
  listener_.Failed(number, description);
}

}  // namespace vesko
