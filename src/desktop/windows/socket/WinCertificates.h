#pragma once

#include <windows.h>
// After windows.h, whose types it uses.
#include <wincrypt.h>

#include <memory>
#include <string>
#include <vector>

#include "desktop/common/ServerIdentity.h"
#include "desktop/common/SocketMessages.h"

namespace vesko {

struct CertificateDeleter {
  void operator()(const CERT_CONTEXT* certificate) const {
    CertFreeCertificateContext(certificate);
  }
};
/// A certificate of the system's library; it is read-only, so threads may share it.
using CertificatePtr = std::unique_ptr<const CERT_CONTEXT, CertificateDeleter>;

/// Everything that is wrong with a server's certificate; empty when it is accepted: it must lead to
/// one of the system's authorities or to one in the PEM file (an empty or unreadable file has
/// none), be valid today, be meant for servers and name the server. Its store holds the other
/// certificates that the server sent; all of them are untrusted. Blocks: the system may fetch what
/// is missing from the network.
std::vector<CertificateFault> CheckServerCertificate(const CERT_CONTEXT& certificate,
                                                     const ServerIdentity& server,
                                                     const std::string& authorities_file);

}  // namespace vesko
