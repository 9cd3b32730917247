#pragma once

#include <cstdint>
#include <vector>

#include "base/Text.h"
#include "base/Variant.h"
#include "config/cRegistry.h"

namespace vesko {

/// Reads and writes single values of one hive, each by its key and name. Nothing here throws unless
/// it says so: what cannot be read is its default, what cannot be written or deleted is skipped,
/// and Failure tells of it afterwards.
class HiveValues {
 public:
  /// `root` is a predefined root key. All must outlive the object.
  HiveValues(Registry& registry, const Locale& locale, Shell& shell, int32_t root)
      : registry_(registry, locale, shell), root_(root) {}

  bool KeyExists(const Text& key);

  /// The value as it is stored, or the default. Text asked for as kRegSz or kRegExpandSz comes
  /// without the spaces around it and without what follows a NUL; run-time error 13 where the
  /// stored value is no text.
  Variant Read(const Text& key, TextView name, uint32_t type, const Variant& default_value);

  /// The same for text, which is the default where the stored value is no text.
  Text ReadText(const Text& key, TextView name, uint32_t type, const Text& default_value = {});

  /// A number stored as a number or as text up to a NUL. Run-time error 6 or 13 where it is none.
  int32_t ReadNumber(const Text& key, TextView name, int32_t default_value);

  /// Creates the key where it is missing.
  void Write(const Text& key, TextView name, uint32_t type, const Variant& value);

  /// Names of the key's sub-keys; none where there is no such key.
  std::vector<Text> SubKeys(const Text& key);

  /// False where the key stays, as one does that has sub-keys.
  bool DeleteKey(const Text& key);
  void DeleteValue(const Text& key, TextView name);

  /// As cRegistry::Failure, over all calls so far.
  int32_t Failure() const { return registry_.Failure(); }

 private:
  void Select(const Text& key, TextView name = {}, uint32_t type = 0);

  cRegistry registry_;
  int32_t root_;
};

}  // namespace vesko
