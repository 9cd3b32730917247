#pragma once

#include <cstdint>
#include <vector>

#include "base/Text.h"
#include "base/cCollect.h"

namespace vesko {

/// Fields of an account record, one text of them joined with CR LF.
enum AccountField : size_t {
  kAccountName = 0,
  kAccountServer = 1,
  kAccountUser = 2,
  kAccountPassword = 3,      // scrambled
  kAccountPort = 4,          // decimal text
  kAccountSavePassword = 5,  // decimal text: 0 off, non-zero on
  kAccountUnstored = 6,
};
inline constexpr size_t kAccountFields = 7;

/// The fields of a record; always at least kAccountFields, missing ones empty.
std::vector<Text> SplitAccount(TextView record);

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
};

}  // namespace vesko
