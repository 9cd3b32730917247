#pragma once

#include <cstdint>

#include "config/Configuration.h"
#include "config/HiveValues.h"

namespace vesko {

/// The settings as one key of a hive and its numbered sub-keys hold them. Nothing here throws: what
/// fails is skipped, and HiveValues::Failure tells of it.
class HiveSettings {
 public:
  /// The values must outlive the object.
  HiveSettings(HiveValues& values, TextView key) : values_(values), key_(key) {}

  /// Whether there is such a key, be it empty.
  bool Exist() const { return values_.KeyExists(key_); }

  /// Replaces everything but the mail program. A missing value is its default; a number stored as
  /// no number keeps what the configuration had.
  void Load(const Text& default_sound, Configuration& configuration) const;

  /// A password is written only for an account whose save-password flag is on. Keys of accounts
  /// behind the last one are deleted up to the first gap.
  void Save(const Configuration& configuration) const;

  /// Deletes the key with those of its accounts.
  void Delete() const;

 private:
  Account LoadAccount(int32_t n) const;
  void SaveValues(const Configuration& configuration) const;
  void SaveAccount(int32_t n, const Account& account) const;
  void DeleteAccountsFrom(int32_t n) const;

  HiveValues& values_;
  Text key_;
};

}  // namespace vesko
