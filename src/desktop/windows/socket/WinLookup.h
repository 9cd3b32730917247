#pragma once

#include <string>

#include "desktop/common/HostLookup.h"

namespace vesko {

/// The host as the name system and certificates have it: characters beyond 7 bits as A-labels.
std::wstring NetworkName(TextView host);

/// See LookUpFunction. The addresses are sockaddr structures.
HostLookup LookUpHost(const Text& host, uint16_t port);

}  // namespace vesko
