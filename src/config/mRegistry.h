#pragma once

#include <cstdint>

#include "config/Configuration.h"
#include "config/HiveValues.h"
#include "platform/Locale.h"
#include "platform/Registry.h"
#include "platform/Shell.h"

namespace vesko {

/// Moves the configuration between memory and the registry. Stored settings that could not be read
/// are never written over, and a process killed at any moment leaves the old settings or the new
/// ones.
class mRegistry {
 public:
  /// All must outlive the store.
  mRegistry(Registry& registry, const Locale& locale, Shell& shell);

  /// Replaces the whole configuration: by the user's hive, or by the machine's where the user's
  /// has none. The first time for a user it seeds the user's hive with defaults and the accounts
  /// of the machine's mail program. A missing value is its default, and a number that is stored as
  /// no number keeps its last value.
  ///
  /// Returns why the settings could not be read, as a registry status, or kStatusSuccess. After a
  /// failure the configuration holds the defaults, and Save does nothing until a Load succeeds.
  int32_t Load(Configuration& configuration);

  /// Writes the configuration to both hives, each in one transaction. A password is written only
  /// for an account whose save-password flag is on.
  ///
  /// Returns why the user's hive could not be written, as a registry status, or kStatusSuccess; the
  /// machine's is no matter, as an ordinary user may not write there. After a failed Load that is
  /// the status of the Load.
  int32_t Save(const Configuration& configuration);

  /// What the last Load returned; kStatusSuccess before the first.
  int32_t LoadStatus() const { return load_status_; }

 private:
  int32_t LoadStored(Configuration& configuration);
  int32_t LoadHive(int32_t root, Configuration& configuration, bool& found);
  int32_t Seed();
  int32_t FirstSettings(Configuration& configuration);
  int32_t Store(HiveValues& values, const Configuration& configuration,
                RegistryTransaction& transaction);
  Text DefaultClient();
  Text DefaultSound() const;

  HiveValues ValuesOf(int32_t root) { return {registry_, locale_, shell_, root}; }

  Registry& registry_;
  const Locale& locale_;
  Shell& shell_;
  int32_t load_status_ = kStatusSuccess;
};

}  // namespace vesko
