#pragma once

#include <cstdint>
#include <vector>

#include "base/Text.h"
#include "base/cCollect.h"
#include "config/Account.h"

namespace vesko {

/// All settings of the component, shared by its parts. Passwords are scrambled here too.
struct Configuration {
  cCollect Accounts;
  int32_t DownLines = 20;      // body lines
  int32_t CheckInterval = 30;  // minutes
  int32_t WaitTime = 20;       // seconds
  int32_t ManualChecking = 1;  // non-zero: the host does not check by itself
  Text SoundFile;
  std::vector<Text> SpamSenders;
  std::vector<Text> SpamSubjects;
  Text DefaultEmailClient;  // looked up, not stored

  /// The account at a position counted from 1; an empty one beyond the last.
  Account AccountAt(int32_t position) const;

  void AddAccount(const Account& account);

  /// Does nothing where there is no such position.
  void ReplaceAccount(int32_t position, const Account& account);
};

}  // namespace vesko
