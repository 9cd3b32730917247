#pragma once

#include <memory>

#include "platform/Locale.h"
#include "platform/Socket.h"

namespace vesko {

/// A TCP client on Winsock whose events come with the thread's message pump. The locale must
/// outlive the socket.
std::unique_ptr<Socket> MakeWinSocket(const Locale& locale);

}  // namespace vesko
