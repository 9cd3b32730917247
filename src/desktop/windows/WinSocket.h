#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "desktop/windows/EventSources.h"
#include "platform/Locale.h"
#include "platform/Socket.h"

namespace vesko {

/// A TCP client on Winsock whose events come when the sources are asked and with the thread's
/// messages. `certificate_file`
/// names (in the system's code page) a PEM file of certificate authorities trusted besides the
/// system's; it is read with each TLS connection, and without effect when it cannot be read. A
/// connection to one of `tls_ports` is TLS (1.2 or later) from its first byte. Locale and
/// sources must outlive the socket; the socket must not be destroyed from within one of its events.
std::unique_ptr<Socket> MakeWinSocket(const Locale& locale, EventSources& sources,
                                      const std::string& certificate_file = {},
                                      std::vector<int32_t> tls_ports = {kPop3sPort});

}  // namespace vesko
