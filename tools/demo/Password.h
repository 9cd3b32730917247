#pragma once

#include <string>

namespace vesko::demo {

/// Asks on the terminal without an echo; where there is no terminal, reads a line of the standard
/// input. Empty when there is none. An interrupt ends the process with the echo back on.
std::string AskPassword(const std::string& prompt);

}  // namespace vesko::demo
