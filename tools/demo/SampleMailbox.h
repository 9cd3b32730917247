#pragma once

#include <string>
#include <vector>

namespace vesko::demo {

/// The two sample accounts: "minji", a mailbox that holds a bit of everything, and the small
/// "office".
inline constexpr const char* kSampleUsers[] = {"minji", "office"};

/// The sample messages of an account, raw (RFC 5322) with lines ended by CR LF, ready for a POP3
/// server. The first account has one with a header of 2 MB too.
std::vector<std::string> SampleMessages(const std::string& user);

}  // namespace vesko::demo
