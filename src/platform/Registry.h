#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace vesko {

/// Predefined root keys, each the top of a hive; a desktop need not have the first.
inline constexpr int32_t kClassesRoot = static_cast<int32_t>(0x80000000);
inline constexpr int32_t kCurrentUser = static_cast<int32_t>(0x80000001);
inline constexpr int32_t kLocalMachine = static_cast<int32_t>(0x80000002);

/// Value types. Text ends with a NUL, and text of several lines with two; a DWORD is four bytes,
/// the least significant one first.
inline constexpr uint32_t kRegSz = 1;
inline constexpr uint32_t kRegExpandSz = 2;
inline constexpr uint32_t kRegBinary = 3;
inline constexpr uint32_t kRegDword = 4;
inline constexpr uint32_t kRegDwordBigEndian = 5;
inline constexpr uint32_t kRegMultiSz = 7;

/// Access rights that a key is opened with.
inline constexpr uint32_t kKeyQueryValue = 0x01;
inline constexpr uint32_t kKeyEnumerateSubKeys = 0x08;
inline constexpr uint32_t kKeyAllAccess = 0x3F;

/// Status codes, the system's own numbers. A desktop may return others, all of them failures.
inline constexpr int32_t kStatusSuccess = 0;
inline constexpr int32_t kStatusFileNotFound = 2;
inline constexpr int32_t kStatusAccessDenied = 5;
inline constexpr int32_t kStatusInvalidHandle = 6;
inline constexpr int32_t kStatusWriteFault = 29;
inline constexpr int32_t kStatusInvalidParameter = 87;
inline constexpr int32_t kStatusDiskFull = 112;
inline constexpr int32_t kStatusBusy = 170;
inline constexpr int32_t kStatusNoMoreItems = 259;
inline constexpr int32_t kStatusRegistryBad = 1009;
inline constexpr int32_t kStatusRegistryCorrupt = 1015;
inline constexpr int32_t kStatusKeyDeleted = 1018;

/// An open key, owned by whoever opened it. A handle that is never closed costs
/// nothing but the system's own limit.
using KeyHandle = uintptr_t;
inline constexpr KeyHandle kNoKey = 0;

/// What a transaction is for. One that writes locks the hive against other writers from its first
/// operation on.
enum class TransactionKind { kRead, kWrite };

/// While one lives, what is read is the hive of one moment, and what is written is one unit: it is
/// stored by Commit, and dropped where the transaction ends without it, or with the process. Once
/// an operation fails for the sake of the store (damaged, no access, busy, disk full), every later
/// one returns the same status at once, and nothing of the unit is stored. Transactions of a hive
/// nest: only the outermost one's Commit stores, and its kind holds.
class RegistryTransaction {
 public:
  virtual ~RegistryTransaction() = default;

  /// Stores what was written so far. Any status but kStatusSuccess: nothing of it was stored.
  virtual int32_t Commit() { return kStatusSuccess; }
};

/// The registry, byte level: names and data are bytes in the registry's code page, paths have
/// backslashes and no leading one, names compare without case. Every operation returns one of the
/// status codes and throws nothing but std::bad_alloc; outputs are set on kStatusSuccess only,
/// unless it says otherwise. Where another process holds a hive, an operation waits for it, but no
/// longer than five seconds, and all operations together no longer than that while a transaction
/// of any hive lives; then it returns kStatusBusy.
class Registry {
 public:
  virtual ~Registry() = default;

  /// Opens an existing key. kStatusFileNotFound where there is none.
  virtual int32_t OpenKey(int32_t root, std::string_view path, uint32_t access, KeyHandle& key) = 0;

  /// Opens a key for all access and creates it, with the keys above it, where it is missing.
  virtual int32_t CreateKey(int32_t root, std::string_view path, KeyHandle& key) = 0;

  /// The handle must not be used afterwards. kNoKey is closed already.
  virtual void CloseKey(KeyHandle key) = 0;

  /// Type and data of a value; the empty name is the key's unnamed value. Text data come as they
  /// were stored, terminating NUL included. Both are untrusted: other programs write here too.
  virtual int32_t QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                             std::string& data) = 0;

  /// Sets type and data of a value, which is created where it is missing. Data are not checked
  /// against the type.
  virtual int32_t SetValue(KeyHandle key, std::string_view name, uint32_t type,
                           std::string_view data) = 0;

  /// Name of the sub-key or value at an index from 0; kStatusNoMoreItems behind the last.
  virtual int32_t EnumKey(KeyHandle key, uint32_t index, std::string& name) = 0;
  virtual int32_t EnumValue(KeyHandle key, uint32_t index, std::string& name) = 0;

  /// Removes a key without sub-keys, its values included. kStatusAccessDenied for a key that has
  /// sub-keys.
  virtual int32_t DeleteKey(int32_t root, std::string_view path) = 0;
  virtual int32_t DeleteValue(KeyHandle key, std::string_view name) = 0;

  /// Begins a transaction of one hive, which must end before the registry does. Never fails: where
  /// the hive cannot be had, its operations and Commit say so.
  virtual std::unique_ptr<RegistryTransaction> BeginTransaction(int32_t root,
                                                                TransactionKind kind) = 0;

  /// Whether a transaction keeps what RegistryTransaction promises about writing. Where false, each
  /// value is stored by itself as soon as it is set, and Commit and the lack of it change nothing.
  virtual bool StoresWholeTransactions() const = 0;

  /// Percent-delimited environment references replaced; unknown ones stay as they are.
  virtual std::string ExpandEnvironment(std::string_view text) = 0;
};

/// Holds one open key at most and closes it at its end. The registry must outlive it.
class RegistryKey {
 public:
  explicit RegistryKey(Registry& registry) : registry_(registry) {}
  ~RegistryKey() { Close(); }
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  /// As the registry's operations of these names. Close what was open before; after a failure no
  /// key is open.
  int32_t Open(int32_t root, std::string_view path, uint32_t access) {
    Close();
    return registry_.OpenKey(root, path, access, handle_);
  }
  int32_t Create(int32_t root, std::string_view path) {
    Close();
    return registry_.CreateKey(root, path, handle_);
  }

  /// kNoKey where no key is open.
  KeyHandle Handle() const { return handle_; }

 private:
  void Close() {
    if (handle_ != kNoKey) registry_.CloseKey(handle_);
    handle_ = kNoKey;
  }

  Registry& registry_;
  KeyHandle handle_ = kNoKey;
};

}  // namespace vesko
