#pragma once

#include <cstdint>
#include <vector>

#include "base/Text.h"
#include "base/cCollect.h"
#include "config/Account.h"

namespace vesko {

/// All settings of the component, shared by its parts. What was loaded is untrusted: no number has
/// a range, and every text may hold anything.
struct Configuration {
  /// Records of the accounts in their order, each a text as Account::ToRecord makes it. Passwords
  /// are scrambled here too.
  cCollect Accounts;

  /// Lines of a message's body to fetch.
  int32_t DownLines = 20;

  /// Minutes between two checks by the host; 0 for none.
  int32_t CheckInterval = 30;

  /// Seconds to wait for a server's reply.
  int32_t WaitTime = 20;

  /// Any number but 0: the host does not check by itself.
  int32_t ManualChecking = 1;

  /// Path of the wave file that announces new mail.
  Text SoundFile;

  /// Keywords that make a message spam; empty ones match nothing.
  std::vector<Text> SpamSenders;
  std::vector<Text> SpamSubjects;

  /// Path of the program that opens mail; looked up with each load, and not stored.
  Text DefaultEmailClient;

  /// The account at a position counted from 1; an empty one beyond the last.
  Account AccountAt(int32_t position) const;

  /// Appends the account's record.
  void AddAccount(const Account& account);

  /// Does nothing where there is no such position.
  void ReplaceAccount(int32_t position, const Account& account);
};

}  // namespace vesko
