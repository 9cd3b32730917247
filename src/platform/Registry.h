#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vesko {

/// Predefined root keys.
inline constexpr int32_t kClassesRoot = static_cast<int32_t>(0x80000000);
inline constexpr int32_t kCurrentUser = static_cast<int32_t>(0x80000001);
inline constexpr int32_t kLocalMachine = static_cast<int32_t>(0x80000002);

/// Value types.
inline constexpr uint32_t kRegSz = 1;
inline constexpr uint32_t kRegExpandSz = 2;
inline constexpr uint32_t kRegBinary = 3;
inline constexpr uint32_t kRegDword = 4;
inline constexpr uint32_t kRegDwordBigEndian = 5;
inline constexpr uint32_t kRegMultiSz = 7;

/// Access rights.
inline constexpr uint32_t kKeyQueryValue = 0x01;
inline constexpr uint32_t kKeyEnumerateSubKeys = 0x08;
inline constexpr uint32_t kKeyAllAccess = 0x3F;

/// Status codes.
inline constexpr int32_t kStatusSuccess = 0;
inline constexpr int32_t kStatusFileNotFound = 2;
inline constexpr int32_t kStatusAccessDenied = 5;
inline constexpr int32_t kStatusInvalidHandle = 6;
inline constexpr int32_t kStatusWriteFault = 29;
inline constexpr int32_t kStatusInvalidParameter = 87;
inline constexpr int32_t kStatusDiskFull = 112;
inline constexpr int32_t kStatusBusy = 170;
inline constexpr int32_t kStatusMoreData = 234;
inline constexpr int32_t kStatusNoMoreItems = 259;
inline constexpr int32_t kStatusRegistryCorrupt = 1015;
inline constexpr int32_t kStatusKeyDeleted = 1018;

/// An open key. Not owned: a handle that is never closed costs nothing but the system's own limit.
using KeyHandle = uintptr_t;
inline constexpr KeyHandle kNoKey = 0;

/// While one lives, what is written to its hive is one unit: after the last one ends all of it is
/// there, after a crash none, and what is read is the hive of one moment. Once a write fails for
/// the sake of the store (disk full, no access, busy), every later one returns the same status and
/// nothing of the unit stays. Where the system has no such thing, it does nothing.
class RegistryTransaction {
 public:
  virtual ~RegistryTransaction() = default;
};

/// The registry, byte level: names and data are bytes in the system's code page, paths have
/// backslashes and no leading one, names compare without case. Every operation returns one of the
/// status codes and raises nothing; outputs are set on kStatusSuccess only, but for what is said.
class Registry {
 public:
  virtual ~Registry() = default;

  /// Opens an existing key. kStatusFileNotFound where there is none.
  virtual int32_t OpenKey(int32_t root, std::string_view path, uint32_t access, KeyHandle& key) = 0;

  /// Opens a key for all access and creates it, with the keys above it, where it is missing.
  virtual int32_t CreateKey(int32_t root, std::string_view path, KeyHandle& key) = 0;

  virtual void CloseKey(KeyHandle key) = 0;

  /// Type and data of a value; the empty name is the key's unnamed value. Text data come as they
  /// were stored, terminating NUL included.
  virtual int32_t QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                             std::string& data) = 0;

  virtual int32_t SetValue(KeyHandle key, std::string_view name, uint32_t type,
                           std::string_view data) = 0;

  /// Name of the sub-key or value at an index from 0; kStatusNoMoreItems behind the last.
  virtual int32_t EnumKey(KeyHandle key, uint32_t index, std::string& name) = 0;
  virtual int32_t EnumValue(KeyHandle key, uint32_t index, std::string& name) = 0;

  /// Removes a key without sub-keys, its values included. kStatusAccessDenied for a key that has
  /// sub-keys.
  virtual int32_t DeleteKey(int32_t root, std::string_view path) = 0;
  virtual int32_t DeleteValue(KeyHandle key, std::string_view name) = 0;

  virtual std::unique_ptr<RegistryTransaction> BeginTransaction(int32_t root) = 0;

  /// Percent-delimited environment references replaced; unknown ones stay as they are.
  virtual std::string ExpandEnvironment(std::string_view text) = 0;
};

}  // namespace vesko
