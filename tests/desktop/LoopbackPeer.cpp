#include "desktop/LoopbackPeer.h"

#include <netdb.h>
#include <netinet/in.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>
#include <utility>

namespace vesko {
namespace {

constexpr timeval kPatience{10, 0};

int32_t PortOf(int fd, decltype(&::getsockname) name) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  name(fd, reinterpret_cast<sockaddr*>(&address), &size);
  return ntohs(address.ss_family == AF_INET6 ? reinterpret_cast<sockaddr_in6&>(address).sin6_port
                                             : reinterpret_cast<sockaddr_in&>(address).sin_port);
}

void AddExtension(X509* x509, int id, const std::string& value) {
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, id, value.c_str());
  X509_add_ext(x509, extension, -1);
  X509_EXTENSION_free(extension);
}

}  // namespace

LoopbackPeer::LoopbackPeer(const char* address, int backlog) {
  addrinfo hints{};
  hints.ai_flags = AI_NUMERICHOST | AI_PASSIVE;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (::getaddrinfo(address, "0", &hints, &found) != 0) throw std::runtime_error(address);
  listener_ = ::socket(found->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const bool bound = ::bind(listener_, found->ai_addr, found->ai_addrlen) == 0;
  ::freeaddrinfo(found);
  if (!bound || ::listen(listener_, backlog) != 0) throw std::runtime_error("cannot listen");
  ::setsockopt(listener_, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
  port_ = PortOf(listener_, ::getsockname);
}

LoopbackPeer::~LoopbackPeer() {
  Close();
  StopListening();
}

bool LoopbackPeer::Accept() {
  Close();
  fd_ = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
  ::setsockopt(fd_, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
  return fd_ >= 0;
}

int32_t LoopbackPeer::ClientPort() const { return PortOf(fd_, ::getpeername); }

bool LoopbackPeer::Send(const std::string& bytes) {
  size_t sent = 0;
  while (sent < bytes.size()) {
    ssize_t size = ::send(fd_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (size <= 0) return false;
    sent += static_cast<size_t>(size);
  }
  return true;
}

std::string LoopbackPeer::Receive(size_t most) {
  std::string bytes(most, '\0');
  ssize_t size = ::recv(fd_, bytes.data(), bytes.size(), 0);
  bytes.resize(size > 0 ? static_cast<size_t>(size) : 0);
  return bytes;
}

std::string LoopbackPeer::ReceiveAll(size_t size) {
  std::string bytes;
  while (bytes.size() < size) {
    std::string piece = Receive();
    if (piece.empty()) break;
    bytes += piece;
  }
  return bytes;
}

void LoopbackPeer::Close() {
  if (fd_ >= 0) ::close(std::exchange(fd_, -1));
}

void LoopbackPeer::Reset() {
  const linger at_once{1, 0};
  ::setsockopt(fd_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  Close();
}

void LoopbackPeer::StopListening() {
  if (listener_ >= 0) ::close(std::exchange(listener_, -1));
}

int32_t DeadPort() { return LoopbackPeer().Port(); }

Certificate MakeCertificate(const std::string& name, int valid_days, const Certificate* issuer) {
  Certificate made{{X509_new(), X509_free}, {EVP_EC_gen("P-256"), EVP_PKEY_free}};
  X509* x509 = made.x509.get();
  static long serial = 0;
  ASN1_INTEGER_set(X509_get_serialNumber(x509), ++serial);
  X509_set_version(x509, X509_VERSION_3);
  X509_gmtime_adj(X509_getm_notBefore(x509), -100L * 24 * 3600);
  X509_gmtime_adj(X509_getm_notAfter(x509), valid_days * 24L * 3600);
  X509_set_pubkey(x509, made.key.get());
  X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  const Certificate& signer = issuer ? *issuer : made;
  X509_set_issuer_name(x509, X509_get_subject_name(signer.x509.get()));
  if (issuer) {
    AddExtension(x509, NID_subject_alt_name, "DNS:" + name);
  } else {
    AddExtension(x509, NID_basic_constraints, "critical,CA:TRUE");
  }
  X509_sign(x509, signer.key.get(), EVP_sha256());
  return made;
}

std::string ToPem(const Certificate& certificate) {
  std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
  PEM_write_bio_X509(memory.get(), certificate.x509.get());
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &text);
  return {text, static_cast<size_t>(size)};
}

std::future<TlsOutcome> ServeTls(LoopbackPeer& peer, const Certificate& certificate,
                                 int highest_version) {
  return std::async(std::launch::async, [&peer, certificate, highest_version] {
    TlsOutcome outcome;
    std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_server_method()),
                                                              SSL_CTX_free);
    SSL_CTX_set_cipher_list(context.get(), "DEFAULT:@SECLEVEL=0");
    SSL_CTX_set_min_proto_version(context.get(), 0);
    SSL_CTX_set_max_proto_version(context.get(), highest_version);
    SSL_CTX_use_certificate(context.get(), certificate.x509.get());
    SSL_CTX_use_PrivateKey(context.get(), certificate.key.get());
    if (!peer.Accept()) return outcome;
    std::unique_ptr<SSL, decltype(&SSL_free)> ssl(SSL_new(context.get()), SSL_free);
    SSL_set_fd(ssl.get(), peer.Descriptor());
    outcome.handshake = SSL_accept(ssl.get()) == 1;
    if (outcome.handshake) {
      const char* name = SSL_get_servername(ssl.get(), TLSEXT_NAMETYPE_host_name);
      outcome.server_name = name ? name : "";
      SSL_write(ssl.get(), "+OK ready\r\n", 11);
      char piece[256];
      const int size = SSL_read(ssl.get(), piece, sizeof piece);
      if (size > 0) outcome.received.assign(piece, static_cast<size_t>(size));
      SSL_shutdown(ssl.get());
    }
    peer.Close();
    return outcome;
  });
}

}  // namespace vesko
