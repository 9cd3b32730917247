#include "desktop/TlsPeer.h"

#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>
#include <sys/socket.h>

#include <csignal>
#include <utility>

namespace vesko {
namespace {

Certificate NewCertificate(const std::string& common_name, int first_day, int last_day) {
  constexpr long kDay = 24L * 3600;
  Certificate made{{X509_new(), X509_free}, {EVP_EC_gen("P-256"), EVP_PKEY_free}};
  X509* x509 = made.x509.get();
  static long serial = 0;
  ASN1_INTEGER_set(X509_get_serialNumber(x509), ++serial);
  X509_set_version(x509, X509_VERSION_3);
  X509_gmtime_adj(X509_getm_notBefore(x509), first_day * kDay);
  X509_gmtime_adj(X509_getm_notAfter(x509), last_day * kDay);
  X509_set_pubkey(x509, made.key.get());
  X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(common_name.c_str()), -1, -1,
                             0);
  return made;
}

void Sign(const Certificate& made, const Certificate& signer) {
  X509_set_issuer_name(made.x509.get(), X509_get_subject_name(signer.x509.get()));
  X509_sign(made.x509.get(), signer.key.get(), EVP_sha256());
}

void AddExtension(X509* x509, int id, const std::string& value) {
  if (value.empty()) return;
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, id, value.c_str());
  X509_add_ext(x509, extension, -1);
  X509_EXTENSION_free(extension);
}

std::shared_ptr<SSL> NewServer(const Certificate& certificate, int highest_version) {
  const std::unique_ptr<SSL_CTX, decltype(&SSL_CTX_free)> context(SSL_CTX_new(TLS_server_method()),
                                                                  SSL_CTX_free);
  SSL_CTX_set_cipher_list(context.get(), "DEFAULT:@SECLEVEL=0");
  SSL_CTX_set_min_proto_version(context.get(), 0);
  SSL_CTX_set_max_proto_version(context.get(), highest_version);
  SSL_CTX_use_certificate(context.get(), certificate.x509.get());
  SSL_CTX_use_PrivateKey(context.get(), certificate.key.get());
  if (certificate.issuer) SSL_CTX_add1_chain_cert(context.get(), certificate.issuer.get());
  return {SSL_new(context.get()), SSL_free};
}

void Greet(SSL* ssl) { SSL_write(ssl, "+OK ready\r\n", 11); }

std::string ReadOnce(SSL* ssl) {
  char piece[256];
  const int size = SSL_read(ssl, piece, sizeof piece);
  return {piece, static_cast<size_t>(size > 0 ? size : 0)};
}

void End(LoopbackPeer& peer, SSL* ssl, TlsEnding ending) {
  if (ending == TlsEnding::kReset) return peer.Reset();
  if (ending != TlsEnding::kOfTcp) SSL_shutdown(ssl);
  if (ending != TlsEnding::kOfTls) ::shutdown(static_cast<int>(peer.Descriptor()), SHUT_WR);
}

template <typename Write>
std::string Written(Write write) {
  const std::unique_ptr<BIO, decltype(&BIO_free)> memory(BIO_new(BIO_s_mem()), BIO_free);
  write(memory.get());
  char* text = nullptr;
  const long size = BIO_get_mem_data(memory.get(), &text);
  return {text, static_cast<size_t>(size)};
}

}  // namespace

Certificate MakeAuthority(const std::string& name) {
  Certificate made = NewCertificate(name, -100, 10);
  AddExtension(made.x509.get(), NID_basic_constraints, "critical,CA:TRUE");
  Sign(made, made);
  return made;
}

Certificate MakeCertificate(const TlsCase& wanted, const Certificate* issuer) {
  Certificate made = NewCertificate(wanted.common_name, wanted.first_day, wanted.last_day);
  AddExtension(made.x509.get(), NID_subject_alt_name, wanted.alternative_names);
  AddExtension(made.x509.get(), NID_ext_key_usage, wanted.usage);
  Sign(made, issuer ? *issuer : made);
  return made;
}

std::string ToPem(const Certificate& certificate) {
  return Written([&](BIO* to) { PEM_write_bio_X509(to, certificate.x509.get()); });
}

std::string KeyToPem(const Certificate& certificate) {
  return Written([&](BIO* to) {
    PEM_write_bio_PrivateKey(to, certificate.key.get(), nullptr, nullptr, 0, nullptr, nullptr);
  });
}

TlsServerEnd::TlsServerEnd(const Certificate& certificate)
    : ssl_(NewServer(certificate, TLS1_3_VERSION)) {
  SSL_set_bio(ssl_.get(), BIO_new(BIO_s_mem()), BIO_new(BIO_s_mem()));
}

std::string TlsServerEnd::Answer(const std::string& from_client) {
  BIO_write(SSL_get_rbio(ssl_.get()), from_client.data(), static_cast<int>(from_client.size()));
  if (SSL_accept(ssl_.get()) == 1 && !std::exchange(greeted_, true)) Greet(ssl_.get());
  std::string answer(BIO_pending(SSL_get_wbio(ssl_.get())), '\0');
  BIO_read(SSL_get_wbio(ssl_.get()), answer.data(), static_cast<int>(answer.size()));
  return answer;
}

std::future<std::string> ServeTls(LoopbackPeer& peer, const Certificate& certificate,
                                  const TlsCase& tls_case) {
  std::signal(SIGPIPE, SIG_IGN);  // clients may leave at any time
  return std::async(std::launch::async, [&peer, certificate, tls_case] {
    std::string seen;
    if (!peer.Accept()) return seen;
    const std::shared_ptr<SSL> ssl = NewServer(certificate, tls_case.highest_version);
    SSL_set_fd(ssl.get(), static_cast<int>(peer.Descriptor()));
    if (SSL_accept(ssl.get()) == 1) {
      const char* name = SSL_get_servername(ssl.get(), TLSEXT_NAMETYPE_host_name);
      Greet(ssl.get());
      const std::string received = ReadOnce(ssl.get());
      if (!received.empty()) seen = std::string(name ? name : "") + ": " + received;
      End(peer, ssl.get(), tls_case.ending);
      while (!ReadOnce(ssl.get()).empty()) continue;
      const bool said_good_bye = (SSL_get_shutdown(ssl.get()) & SSL_RECEIVED_SHUTDOWN) != 0;
      if (said_good_bye && !seen.empty()) seen += "bye";
    }
    peer.Close();
    return seen;
  });
}

}  // namespace vesko
