#pragma once

#include <string>
#include <string_view>

namespace vesko {

/// Whom a TLS server must prove to be.
struct ServerIdentity {
  std::string name;     // as the name system has it: 7-bit, in any case
  std::string address;  // the 4 or 16 bytes where the user gave an address, else empty
};

/// The name to ask the server for: without the final dot of a fully qualified name; empty for an
/// address.
std::string AnnouncedName(const ServerIdentity& server);

/// Whether a certificate names the server (RFC 9525). `alternative_names` is the DER value of its
/// subjectAltName extension, untrusted; empty when there is none. An address must be among the
/// addresses, a name among the names, where "*" stands for one whole left-most label and must be
/// followed by two more. What follows a fault in the DER is ignored.
bool NamesServer(std::string_view alternative_names, const ServerIdentity& server);

/// Whether a server's first bytes can be those of TLS, a handshake or an alert. True without bytes.
bool LooksLikeTls(std::string_view bytes);

}  // namespace vesko
