#pragma once

#include <cstdint>
#include <vector>

#include "base/Text.h"
#include "base/Variant.h"
#include "platform/Locale.h"
#include "platform/Registry.h"
#include "platform/Shell.h"

namespace vesko {

/// Error numbers of cRegistry: a key that cannot be created, opened or deleted, and a value that
/// cannot be written.
inline constexpr int32_t kRegistryFailed = 26001;
inline constexpr int32_t kRegistryWriteFailed = static_cast<int32_t>(0x800469A9);

/// Reads and writes one registry value at a time. The caller sets the place first; every operation
/// opens the key that it needs, and nothing is kept open between calls. Text is converted by the
/// locale's code page. What is read is untrusted, since other programs write to the registry too.
class cRegistry {
 public:
  /// All must outlive the object.
  cRegistry(Registry& registry, const Locale& locale, Shell& shell)
      : registry_(registry), locale_(locale), shell_(shell) {}

  /// Type of the value, a number of Registry.h: set it before a write; a read that finds a value
  /// sets it.
  int32_t ValueType = 0;

  /// The place: a predefined root key, the path of a key without a leading backslash, and the name
  /// of a value, which is empty for the key's unnamed one.
  int32_t ClassKey = 0;
  Text SectionKey;
  Text ValueKey;

  /// What a read returns where the value cannot be read.
  Variant Default;

  /// False for a key that cannot be opened, too.
  bool KeyExists() const;

  /// True, or run-time error 26001. A key that exists already is success for CreateKey; one with
  /// sub-keys cannot be deleted.
  bool CreateKey() const;
  bool DeleteKey() const;
  bool DeleteValue() const;

  /// The stored value by its stored type: text, a number or bytes. Throws nothing. Text comes with
  /// the NULs that it was stored with, but for the last one.
  Variant Value();

  /// Creates the key where it is missing. Text is stored as expandable where it holds two percent
  /// signs with something between them, whatever ValueType says; a value that does not go with
  /// ValueType is not written, silently. Run-time error 26001 where the key cannot be created, and
  /// 13 where the value should be text and is none. Other failures are Failure's to tell.
  void Value(const Variant& value);

  /// Names of the key's values or sub-keys, in no order. False, and `count` untouched, where the
  /// key cannot be opened. Values replace what `names` held; sub-keys replace as many as there are.
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

/// Path of a numbered sub-key: eight digits, zero-padded, or more where n has more. Precondition: n
/// is not negative.
Text NumberedKey(TextView parent, int32_t n);

}  // namespace vesko
