#pragma once

#include <string>
#include <string_view>

namespace vesko {

/// Whom a TLS server must prove to be.
struct ServerIdentity {
  std::string name;     // as in the name system: 7-bit, A-labels for others; any case
  std::string address;  // of 4 or 16 bytes where the user gave an address, else empty
};

/// The name to announce to the server: without the dot of a fully qualified one, and nothing for an
/// address, which no server can be asked for by name.
std::string AnnouncedName(const ServerIdentity& server);

/// Whether a certificate belongs to the server (RFC 9525). `alternative_names` is the DER value of
/// its subjectAltName extension, untrusted, empty where it has none; the common name never counts.
/// An address must be among the addresses, a name among the names; "*" stands for the whole of a
/// left-most label and must be followed by two more. Whatever follows a fault in the DER is
/// ignored.
bool NamesServer(std::string_view alternative_names, const ServerIdentity& server);

/// Whether the first bytes of a server can be TLS: a handshake or an alert. True with no bytes.
bool LooksLikeTls(std::string_view bytes);

}  // namespace vesko
