#include "desktop/TlsPeer.h"

#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

namespace vesko {
namespace {

void AddExtension(X509* x509, int id, const std::string& value) {
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, nullptr, id, value.c_str());
  X509_add_ext(x509, extension, -1);
  X509_EXTENSION_free(extension);
}

}  // namespace

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
    SSL_set_fd(ssl.get(), static_cast<int>(peer.Descriptor()));
    if (SSL_accept(ssl.get()) == 1) {
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
