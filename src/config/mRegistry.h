#pragma once

#include "config/Configuration.h"
#include "platform/Locale.h"
#include "platform/Registry.h"
#include "platform/Shell.h"

namespace vesko {

/// Moves the configuration between memory and the registry. Nothing in it reports an error: a
/// failed read yields the value's default, a failed write is skipped.
class mRegistry {
 public:
  /// All must outlive the store.
  mRegistry(Registry& registry, const Locale& locale, Shell& shell);

  /// Replaces the whole configuration: by the user's hive, or by the machine's where the user's
  /// has none. The first time for a user it seeds the user's hive with defaults and the accounts
  /// of the machine's mail program. A number that is stored as no number keeps its last value.
  void Load(Configuration& configuration);

  /// Writes the configuration to both hives, each in one transaction. A password is written only
  /// for an account whose save-password flag is on.
  void Save(const Configuration& configuration);

 private:
  void Seed();
  Text DefaultSound() const;

  Registry& registry_;
  const Locale& locale_;
  Shell& shell_;
};

}  // namespace vesko
