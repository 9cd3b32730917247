#pragma once

#include <memory>
#include <string>

#include "platform/Locale.h"
#include "platform/Socket.h"

namespace vesko {

/// A TCP client on Qt's event loop. `certificate_file` names a PEM file of certificate authorities
/// trusted besides the system's, or is empty. The locale must outlive the socket.
std::unique_ptr<Socket> MakeQtSocket(const Locale& locale, const std::string& certificate_file);

}  // namespace vesko
