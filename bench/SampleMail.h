#pragma once

#include <string>

namespace vesko {

/// A message as they come every day: some 1 kB of header with encoded words, and twenty lines of
/// body. The number, from 1 to 99,999, makes its Message-ID and subject its own; all have the same
/// length.
std::string SampleMail(int number);

}  // namespace vesko
