#include "desktop/linux/socket/TlsContext.h"

#include <openssl/err.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <new>
#include <string_view>

namespace vesko {
namespace {

CertificateFault FaultOf(int error) {
  switch (error) {
    case X509_V_ERR_CERT_HAS_EXPIRED:
      return CertificateFault::kExpired;
    case X509_V_ERR_CERT_NOT_YET_VALID:
      return CertificateFault::kNotYetValid;
    case X509_V_ERR_DEPTH_ZERO_SELF_SIGNED_CERT:
      return CertificateFault::kSelfSigned;
    case X509_V_ERR_SELF_SIGNED_CERT_IN_CHAIN:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT:
    case X509_V_ERR_UNABLE_TO_GET_ISSUER_CERT_LOCALLY:
    case X509_V_ERR_UNABLE_TO_VERIFY_LEAF_SIGNATURE:
    case X509_V_ERR_CERT_UNTRUSTED:
      return CertificateFault::kUnknownAuthority;
    case X509_V_ERR_CERT_REVOKED:
      return CertificateFault::kWithdrawn;
    case X509_V_ERR_INVALID_PURPOSE:
      return CertificateFault::kWrongPurpose;
    default:
      return CertificateFault::kOther;
  }
}

CertificateCheck& CheckOf(X509_STORE_CTX* store) {
  const int index = SSL_get_ex_data_X509_STORE_CTX_idx();
  const auto* ssl = static_cast<const SSL*>(X509_STORE_CTX_get_ex_data(store, index));
  return *static_cast<CertificateCheck*>(SSL_get_app_data(ssl));
}

std::string_view AlternativeNames(const X509* certificate) {
  const int position = X509_get_ext_by_NID(certificate, NID_subject_alt_name, -1);
  if (position < 0) return {};
  const ASN1_OCTET_STRING* value = X509_EXTENSION_get_data(X509_get_ext(certificate, position));
  return {reinterpret_cast<const char*>(ASN1_STRING_get0_data(value)),
          static_cast<size_t>(ASN1_STRING_length(value))};
}

// Continues after each fault, so that the message can name all of them.
int NoteFault(int ok, X509_STORE_CTX* store) {
  if (!ok) CheckOf(store).faults.push_back(FaultOf(X509_STORE_CTX_get_error(store)));
  return 1;
}

// Called in the middle of the handshake. Returning 0 ends it and tells the server why.
int CheckCertificate(X509_STORE_CTX* store, void*) {
  CertificateCheck& check = CheckOf(store);
  check.faults.clear();
  X509_STORE_CTX_set_verify_cb(store, NoteFault);
  if (X509_verify_cert(store) <= 0) check.faults.push_back(CertificateFault::kOther);
  if (!NamesServer(AlternativeNames(X509_STORE_CTX_get0_cert(store)), check.server)) {
    check.faults.push_back(CertificateFault::kOtherHost);
    X509_STORE_CTX_set_error(store, X509_V_ERR_HOSTNAME_MISMATCH);
  }
  return check.faults.empty() ? 1 : 0;
}

BIO* NewMemory() {
  BIO* memory = BIO_new(BIO_s_mem());
  if (!memory) throw std::bad_alloc();
  BIO_set_mem_eof_return(memory, -1);  // empty means that more may come
  return memory;
}

}  // namespace

void SslDeleter::operator()(SSL* ssl) const { SSL_free(ssl); }

TlsContext::TlsContext(const std::string& certificate_file)
    : context_(SSL_CTX_new(TLS_client_method())) {
  if (!context_) throw std::bad_alloc();
  SSL_CTX_set_min_proto_version(context_, TLS1_2_VERSION);
  SSL_CTX_set_options(context_, SSL_OP_NO_RENEGOTIATION);
  SSL_CTX_set_verify(context_, SSL_VERIFY_PEER, nullptr);
  SSL_CTX_set_cert_verify_callback(context_, CheckCertificate, nullptr);
  SSL_CTX_set_default_verify_paths(context_);
  if (!certificate_file.empty()) SSL_CTX_load_verify_file(context_, certificate_file.c_str());
  ERR_clear_error();
}

TlsContext::~TlsContext() { SSL_CTX_free(context_); }

SslPtr TlsContext::NewConnection(CertificateCheck& check) {
  SslPtr ssl(SSL_new(context_));
  if (!ssl) throw std::bad_alloc();
  SSL_set0_rbio(ssl.get(), NewMemory());
  SSL_set0_wbio(ssl.get(), NewMemory());
  SSL_set_app_data(ssl.get(), &check);
  const std::string name = AnnouncedName(check.server);
  if (!name.empty()) SSL_set_tlsext_host_name(ssl.get(), name.c_str());
  SSL_set_connect_state(ssl.get());
  return ssl;
}

}  // namespace vesko
