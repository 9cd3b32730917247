#include <cstdlib>
#include <utility>

#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/registry/Hive.h"
#include "desktop/linux/registry/Patience.h"

namespace vesko {
namespace {

class HiveTransaction : public RegistryTransaction {
 public:
  HiveTransaction(Hive& hive, TransactionKind kind) : hive_(hive) { hive_.BeginTransaction(kind); }
  ~HiveTransaction() override { hive_.EndTransaction(); }
  int32_t Commit() override { return hive_.Commit(); }

 private:
  Hive& hive_;
};

/// A key handle is the row of the key with the number of its hive above it: nothing to keep, so
/// nothing to close.
constexpr int kHiveShift = 56;

class SqliteRegistry : public Registry {
 public:
  SqliteRegistry(const std::string& user_folder, const std::string& machine_folder,
                 PassTime pass_time)
      : patience_(std::move(pass_time)),
        user_(user_folder, patience_),
        machine_(machine_folder, patience_) {}

  int32_t OpenKey(int32_t root, std::string_view path, uint32_t, KeyHandle& key) override {
    return Located(root, path, key, &Hive::FindPath);
  }

  int32_t CreateKey(int32_t root, std::string_view path, KeyHandle& key) override {
    return Located(root, path, key, &Hive::MakePath);
  }

  void CloseKey(KeyHandle) override {}

  int32_t QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                     std::string& data) override {
    Hive* hive = HiveOf(key);
    return hive ? hive->Query(RowOf(key), name, type, data) : kStatusInvalidHandle;
  }

  int32_t SetValue(KeyHandle key, std::string_view name, uint32_t type,
                   std::string_view data) override {
    Hive* hive = HiveOf(key);
    if (!hive) return kStatusInvalidHandle;
    if (!IsName(name)) return kStatusInvalidParameter;
    return hive->Set(RowOf(key), name, type, data);
  }

  int32_t EnumKey(KeyHandle key, uint32_t index, std::string& name) override {
    Hive* hive = HiveOf(key);
    return hive ? hive->NthKey(RowOf(key), index, name) : kStatusInvalidHandle;
  }

  int32_t EnumValue(KeyHandle key, uint32_t index, std::string& name) override {
    Hive* hive = HiveOf(key);
    return hive ? hive->NthValue(RowOf(key), index, name) : kStatusInvalidHandle;
  }

  int32_t DeleteKey(int32_t root, std::string_view path) override {
    Hive* hive = HiveOf(root);
    return hive ? hive->RemoveKey(path) : kStatusInvalidHandle;
  }

  int32_t DeleteValue(KeyHandle key, std::string_view name) override {
    Hive* hive = HiveOf(key);
    return hive ? hive->RemoveValue(RowOf(key), name) : kStatusInvalidHandle;
  }

  std::unique_ptr<RegistryTransaction> BeginTransaction(int32_t root,
                                                        TransactionKind kind) override {
    Hive* hive = HiveOf(root);
    if (!hive) return std::make_unique<RegistryTransaction>();
    return std::make_unique<HiveTransaction>(*hive, kind);
  }

  bool StoresWholeTransactions() const override { return true; }

  std::string ExpandEnvironment(std::string_view text) override;

 private:
  static bool IsName(std::string_view name) { return name.find('\0') == std::string_view::npos; }
  static int64_t RowOf(KeyHandle key) {
    return static_cast<int64_t>(key & ((KeyHandle{1} << kHiveShift) - 1));
  }

  Hive* HiveOf(int32_t root) {
    return root == kCurrentUser ? &user_ : root == kLocalMachine ? &machine_ : nullptr;
  }
  Hive* HiveOf(KeyHandle key) {
    KeyHandle number = key >> kHiveShift;
    return number == 1 ? &user_ : number == 2 ? &machine_ : nullptr;
  }

  int32_t Located(int32_t root, std::string_view path, KeyHandle& key,
                  int32_t (Hive::*locate)(std::string_view, int64_t&)) {
    Hive* hive = HiveOf(root);
    if (!hive) return kStatusInvalidHandle;
    if (!IsName(path)) return kStatusInvalidParameter;
    int64_t row = 0;
    int32_t status = (hive->*locate)(path, row);
    if (status) return status;
    key = (KeyHandle{hive == &user_ ? 1u : 2u} << kHiveShift) | static_cast<KeyHandle>(row);
    return kStatusSuccess;
  }

  Patience patience_;
  Hive user_;
  Hive machine_;
};

std::string SqliteRegistry::ExpandEnvironment(std::string_view text) {
  std::string expanded;
  size_t begin = 0;
  for (size_t percent; (percent = text.find('%', begin)) != std::string_view::npos;) {
    expanded += text.substr(begin, percent - begin);
    size_t end = text.find('%', percent + 1);
    begin = percent;
    if (end == std::string_view::npos) break;
    std::string name(text.substr(percent + 1, end - percent - 1));
    const char* value = name.empty() ? nullptr : std::getenv(name.c_str());
    // What is no reference stays, but for its last percent sign, which may begin one.
    expanded += value ? value : text.substr(percent, end - percent);
    begin = value ? end + 1 : end;
  }
  return expanded.append(text.substr(begin));
}

}  // namespace

std::unique_ptr<Registry> MakeSqliteRegistry(const std::string& user_folder,
                                             const std::string& machine_folder,
                                             PassTime pass_time) {
  return std::make_unique<SqliteRegistry>(user_folder, machine_folder, std::move(pass_time));
}

}  // namespace vesko
