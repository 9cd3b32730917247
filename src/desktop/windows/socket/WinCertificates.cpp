#include "desktop/windows/socket/WinCertificates.h"

#include <winhttp.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

namespace vesko {
namespace {

constexpr std::string_view kBegin = "-----BEGIN CERTIFICATE-----";
constexpr std::string_view kEnd = "-----END CERTIFICATE-----";

struct StoreDeleter {
  void operator()(void* store) const { CertCloseStore(store, 0); }
};
using StorePtr = std::unique_ptr<void, StoreDeleter>;

struct ChainDeleter {
  void operator()(const CERT_CHAIN_CONTEXT* chain) const { CertFreeCertificateChain(chain); }
};
using ChainPtr = std::unique_ptr<const CERT_CHAIN_CONTEXT, ChainDeleter>;

void AddPem(HCERTSTORE store, std::string_view pem) {
  DWORD size = 0;
  const auto length = static_cast<DWORD>(pem.size());
  if (!CryptStringToBinaryA(pem.data(), length, CRYPT_STRING_BASE64HEADER, nullptr, &size, nullptr,
                            nullptr)) {
    return;
  }
  std::vector<BYTE> bytes(size);
  CryptStringToBinaryA(pem.data(), length, CRYPT_STRING_BASE64HEADER, bytes.data(), &size, nullptr,
                       nullptr);
  CertAddEncodedCertificateToStore(store, X509_ASN_ENCODING, bytes.data(), size,
                                   CERT_STORE_ADD_USE_EXISTING, nullptr);
}

// A store in memory with the certificates of the file.
StorePtr ReadAuthorities(const std::string& file_name) {
  StorePtr store(CertOpenStore(CERT_STORE_PROV_MEMORY, 0, 0, 0, nullptr));
  if (file_name.empty()) return store;
  std::ifstream file{std::filesystem::path(file_name), std::ios::binary};
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  for (size_t begin = text.find(kBegin); begin != text.npos; begin = text.find(kBegin, begin + 1)) {
    const size_t end = text.find(kEnd, begin);
    if (end == text.npos) break;
    AddPem(store.get(), std::string_view(text).substr(begin, end + kEnd.size() - begin));
  }
  return store;
}

ChainPtr BuildChain(const CERT_CONTEXT& certificate, HCERTSTORE authorities) {
  const StorePtr known(CertOpenStore(CERT_STORE_PROV_COLLECTION, 0, 0, 0, nullptr));
  CertAddStoreToCollection(known.get(), certificate.hCertStore, 0, 0);
  CertAddStoreToCollection(known.get(), authorities, 0, 0);
  char server[] = szOID_PKIX_KP_SERVER_AUTH;
  char* usages[] = {server};
  CERT_CHAIN_PARA wanted{};
  wanted.cbSize = sizeof wanted;
  wanted.RequestedUsage.dwType = USAGE_MATCH_TYPE_OR;
  wanted.RequestedUsage.Usage.cUsageIdentifier = 1;
  wanted.RequestedUsage.Usage.rgpszUsageIdentifier = usages;
  const CERT_CHAIN_CONTEXT* chain = nullptr;
  CertGetCertificateChain(nullptr, &certificate, nullptr, known.get(), &wanted, 0, nullptr, &chain);
  return ChainPtr(chain);
}

const CERT_CONTEXT& Root(const CERT_CHAIN_CONTEXT& chain) {
  const CERT_SIMPLE_CHAIN& last = *chain.rgpChain[chain.cChain - 1];
  return *last.rgpElement[last.cElement - 1]->pCertContext;
}

bool Holds(HCERTSTORE store, const CERT_CONTEXT& certificate) {
  return CertificatePtr(CertFindCertificateInStore(store, X509_ASN_ENCODING, 0, CERT_FIND_EXISTING,
                                                   &certificate, nullptr)) != nullptr;
}

// The system's own check of everything but the name, where it would accept a common name. It
// ignores an unknown authority if `root_known`.
DWORD PolicyError(const CERT_CHAIN_CONTEXT& chain, bool root_known) {
  SSL_EXTRA_CERT_CHAIN_POLICY_PARA server{};
  server.cbSize = sizeof server;
  server.dwAuthType = AUTHTYPE_SERVER;
  server.fdwChecks = SECURITY_FLAG_IGNORE_CERT_CN_INVALID;
  CERT_CHAIN_POLICY_PARA policy{};
  policy.cbSize = sizeof policy;
  policy.pvExtraPolicyPara = &server;
  if (root_known) policy.dwFlags = CERT_CHAIN_POLICY_ALLOW_UNKNOWN_CA_FLAG;
  CERT_CHAIN_POLICY_STATUS status{};
  status.cbSize = sizeof status;
  const bool asked =
      CertVerifyCertificateChainPolicy(CERT_CHAIN_POLICY_SSL, &chain, &policy, &status) != FALSE;
  return asked ? status.dwError : static_cast<DWORD>(TRUST_E_FAIL);
}

// The policy of some systems (Wine for one) overlooks faults that the chain has noted.
DWORD ChainError(const CERT_CHAIN_CONTEXT& chain, bool root_known) {
  const DWORD status = chain.TrustStatus.dwErrorStatus;
  if (status & CERT_TRUST_IS_PARTIAL_CHAIN) return static_cast<DWORD>(CERT_E_CHAINING);
  if ((status & CERT_TRUST_IS_UNTRUSTED_ROOT) && !root_known) {
    return static_cast<DWORD>(CERT_E_UNTRUSTEDROOT);
  }
  constexpr DWORD kBroken =
      CERT_TRUST_IS_NOT_SIGNATURE_VALID | CERT_TRUST_IS_CYCLIC | CERT_TRUST_IS_REVOKED |
      CERT_TRUST_IS_NOT_TIME_VALID | CERT_TRUST_IS_NOT_VALID_FOR_USAGE |
      CERT_TRUST_INVALID_BASIC_CONSTRAINTS | CERT_TRUST_INVALID_NAME_CONSTRAINTS;
  return status & kBroken ? static_cast<DWORD>(TRUST_E_FAIL) : 0;
}

bool IsSelfSigned(const CERT_CONTEXT& certificate) {
  CERT_INFO* info = certificate.pCertInfo;
  return CertCompareCertificateName(X509_ASN_ENCODING, &info->Subject, &info->Issuer) != FALSE;
}

CertificateFault FaultOf(DWORD policy_error, const CERT_CONTEXT& certificate) {
  switch (static_cast<HRESULT>(policy_error)) {
    case CERT_E_EXPIRED:
      return CertVerifyTimeValidity(nullptr, certificate.pCertInfo) < 0
                 ? CertificateFault::kNotYetValid
                 : CertificateFault::kExpired;
    case CERT_E_UNTRUSTEDROOT:
    case CERT_E_CHAINING:
      return IsSelfSigned(certificate) ? CertificateFault::kSelfSigned
                                       : CertificateFault::kUnknownAuthority;
    case CERT_E_REVOKED:
    case CRYPT_E_REVOKED:
    case TRUST_E_EXPLICIT_DISTRUST:
      return CertificateFault::kWithdrawn;
    case CERT_E_WRONG_USAGE:
    case CERT_E_PURPOSE:
      return CertificateFault::kWrongPurpose;
    default:
      return CertificateFault::kOther;
  }
}

std::string_view AlternativeNames(const CERT_CONTEXT& certificate) {
  const CERT_INFO& info = *certificate.pCertInfo;
  char id[] = szOID_SUBJECT_ALT_NAME2;
  const CERT_EXTENSION* found = CertFindExtension(id, info.cExtension, info.rgExtension);
  if (!found) return {};
  return {reinterpret_cast<const char*>(found->Value.pbData), found->Value.cbData};
}

std::optional<CertificateFault> ChainFault(const CERT_CONTEXT& certificate,
                                           HCERTSTORE authorities) {
  const ChainPtr chain = BuildChain(certificate, authorities);
  if (!chain || chain->cChain == 0) return CertificateFault::kOther;
  const bool root_known = Holds(authorities, Root(*chain));
  DWORD error = PolicyError(*chain, root_known);
  if (error == 0) error = ChainError(*chain, root_known);
  if (error == 0) return std::nullopt;
  return FaultOf(error, certificate);
}

}  // namespace

std::vector<CertificateFault> CheckServerCertificate(const CERT_CONTEXT& certificate,
                                                     const ServerIdentity& server,
                                                     const std::string& authorities_file) {
  const StorePtr authorities = ReadAuthorities(authorities_file);
  std::vector<CertificateFault> faults;
  if (const auto fault = ChainFault(certificate, authorities.get())) faults.push_back(*fault);
  if (!NamesServer(AlternativeNames(certificate), server)) {
    faults.push_back(CertificateFault::kOtherHost);
  }
  return faults;
}

}  // namespace vesko
