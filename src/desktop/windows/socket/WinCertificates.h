#pragma once

#include <windows.h>
// After windows.h, whose types it uses.
#include <wincrypt.h>

#include <memory>
#include <optional>
#include <string>

#include "desktop/common/SocketMessages.h"

namespace vesko {

struct CertificateDeleter {
  void operator()(const CERT_CONTEXT* certificate) const {
    CertFreeCertificateContext(certificate);
  }
};
using CertificatePtr = std::unique_ptr<const CERT_CONTEXT, CertificateDeleter>;

/// What is wrong with a server's certificate, nothing where it is good: whether it leads to one of
/// the system's authorities or to one in the PEM file (empty or unreadable: none), belongs to the
/// host, and is valid today. The certificate's own store holds what the server sent with it. May
/// fetch what is missing from the network, so it blocks.
std::optional<CertificateFault> CheckServerCertificate(const CERT_CONTEXT& certificate,
                                                       const std::wstring& host,
                                                       const std::string& authorities_file);

}  // namespace vesko
