#pragma once

#include <cstdint>
#include <vector>

#include "base/Text.h"
#include "base/Variant.h"
#include "platform/Locale.h"
#include "platform/Registry.h"
#include "platform/Shell.h"

namespace vesko {

/// Error numbers of cRegistry.
inline constexpr int32_t kRegistryFailed = 26001;
inline constexpr int32_t kRegistryWriteFailed = static_cast<int32_t>(0x800469A9);

/// Reads and writes one registry value at a time. The caller sets the place first; every operation
/// opens the key that it needs, and nothing is kept open between calls. Text is converted by the
/// system's code page.
class cRegistry {
 public:
  /// All must outlive the object.
  cRegistry(Registry& registry, const Locale& locale, Shell& shell)
      : registry_(registry), locale_(locale), shell_(shell) {}

  int32_t ValueType = 0;  // set before a write; set by every successful read
  int32_t ClassKey = 0;   // a predefined root key
  Text SectionKey;        // path of the key, without a leading backslash
  Text ValueKey;          // name of the value; empty for the key's unnamed one
  Variant Default;        // what a read yields where there is no such value

  bool KeyExists() const;

  /// True, or run-time error 26001. An existing key is success.
  bool CreateKey() const;
  bool DeleteKey() const;
  bool DeleteValue() const;

  /// Raises nothing. Text comes with the NULs that it was stored with, but for the last one.
  Variant Value();

  /// Creates the key where it is missing. Text is stored as expandable where it holds two percent
  /// signs with something between them, whatever ValueType says; a value that does not go with
  /// ValueType is not written, silently. Raises 26001 where the key cannot be created.
  void Value(const Variant& value);

  /// Names of the key's values or sub-keys. False, and `count` untouched, where there is no key.
  bool EnumerateValues(std::vector<Text>& names, int32_t& count) const;
  bool EnumerateSections(std::vector<Text>& names, int32_t& count) const;

  /// Status of the first registry call so far that neither succeeded nor found that something does
  /// not exist; kStatusSuccess where there was none. What was read since may be a default in place
  /// of a stored value, and what was written may be missing.
  int32_t Failure() const { return failure_; }

 private:
  enum class Field { kSection, kValue };

  int32_t Open(RegistryKey& key, uint32_t access) const;
  int32_t Create(RegistryKey& key) const;
  int32_t Set(KeyHandle key, uint32_t type, std::string_view data) const;
  int32_t Noted(int32_t status) const;
  Text Place(Field last) const;
  [[noreturn]] void Throw(int32_t number, const Text& description) const;
  [[noreturn]] void ThrowWriteError(int32_t number) const;
  Variant FromData(uint32_t type, std::string data) const;
  int32_t Store(KeyHandle key, const Variant& value) const;
  int32_t StoreText(KeyHandle key, const Text& text) const;

  Registry& registry_;
  const Locale& locale_;
  Shell& shell_;
  Variant cached_;  // the value that was last written
  mutable int32_t failure_ = kStatusSuccess;
};

/// Path of a numbered sub-key: eight digits, zero-padded. Precondition: n is not negative.
Text NumberedKey(TextView parent, int32_t n);

}  // namespace vesko
