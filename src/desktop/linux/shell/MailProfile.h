#pragma once

#include <string>
#include <vector>

#include "platform/Shell.h"

namespace vesko {

/// POP3 accounts of the first profile found, in the order of its account list. Each folder may hold
/// a profiles.ini as Thunderbird writes it. No password is read. The files may hold anything: what
/// is malformed is left out, and no value holds a control character.
std::vector<ForeignAccount> ReadMailAccounts(const std::vector<std::string>& folders);

}  // namespace vesko
