#pragma once

#include <string>

namespace vesko::demo {

/// Asks on the terminal with the echo off; where there is no terminal, reads a line of the standard
/// input. Empty at the end of the input. SIGINT and SIGTERM turn the echo on again and end the
/// process.
std::string AskPassword(const std::string& prompt);

}  // namespace vesko::demo
