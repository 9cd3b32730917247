#pragma once

#include "config/HiveSettings.h"

namespace vesko {

/// Saves the settings of a hive so that a process killed between any two writes leaves the old or
/// the new ones, never a mixture, where the registry stores each value by itself. The settings are
/// first written whole under a key beside their own, which is then marked complete; from then on
/// they count, and their own key is brought up to date.
class SaveJournal {
 public:
  /// The settings are those of the values' hive under `key`. Both must outlive the object.
  SaveJournal(HiveValues& values, const Text& key);

  /// The settings that count: those of a journal whose save did not come to its end, or those of
  /// the key.
  /// HiveValues::Failure tells where that cannot be known. Nothing is written.
  const HiveSettings& Current();

  /// Completes a save that did not come to its end, then saves. Nothing has changed where
  /// HiveValues::Failure tells of a failure before the journal was complete.
  void Save(const Configuration& configuration);

 private:
  bool IsComplete();
  bool Failed() const { return values_.Failure() != kStatusSuccess; }
  void Complete();
  void Apply(const Configuration& configuration);

  HiveValues& values_;
  Text journal_key_;
  HiveSettings settings_;
  HiveSettings journal_;
};

}  // namespace vesko
