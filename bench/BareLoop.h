#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vesko {

struct BareLoopResult {
  int messages = 0;
  size_t bytes = 0;  // of the replies to TOP
};

/// The least that a check can cost: a blocking socket that sends the same commands one by one,
/// waits for each reply and looks at nothing but its end. Fetches as many messages as STAT reports.
/// Throws std::runtime_error when a reply does not come.
BareLoopResult RunBareLoop(uint16_t port, const std::string& user, const std::string& password,
                           int down_lines);

/// The same over TLS, with nothing checked. Not on Windows.
BareLoopResult RunBareTlsLoop(uint16_t port, const std::string& user, const std::string& password,
                              int down_lines);

}  // namespace vesko
