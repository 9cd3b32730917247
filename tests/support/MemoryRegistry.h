#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Registry.h"

namespace vesko {

/// Operations of a registry that a test can make fail.
enum class RegistryCall {
  kOpenKey,
  kCreateKey,
  kQueryValue,
  kSetValue,
  kEnumKey,
  kEnumValue,
  kDeleteKey,
  kDeleteValue,
};

/// A registry in memory, which also notes what a real one does not tell about transactions.
class MemoryRegistry : public Registry {
 public:
  /// From now on the n-th call of the operation, counted from 1, does nothing but return the
  /// status; every call where n is 0.
  void Fail(RegistryCall call, int32_t status, int n = 0) { faults_[call] = {status, n}; }
  void HealAll() { faults_.clear(); }

  /// What a test puts in and looks up without the operations. Missing keys are created.
  void PutText(int32_t root, std::string_view path, std::string_view name, std::string_view text);
  void PutNumber(int32_t root, std::string_view path, std::string_view name, int32_t number);
  void Put(int32_t root, std::string_view path, std::string_view name, uint32_t type,
           std::string_view data);
  bool HasKey(int32_t root, std::string_view path) const;
  using Value = std::pair<uint32_t, std::string>;  // type and raw data
  /// Nothing where there is no such value.
  std::optional<Value> Get(int32_t root, std::string_view path, std::string_view name) const;
  /// A text value up to its first NUL, or a number in decimal; "(none)" where there is none.
  std::string Show(int32_t root, std::string_view path, std::string_view name) const;

  /// Number of transactions begun on a root, outermost ones only.
  int Transactions(int32_t root) { return hives_.at(root).transactions; }
  /// Number of values set and keys created or deleted while no transaction of their hive lived.
  int WritesOutsideTransactions() const { return loose_writes_; }

  std::map<std::string, std::string> environment{{"VESKO_A", "alpha"}, {"VESKO_EMPTY", ""}};
  std::function<void()> on_transaction;  // may throw

  int32_t OpenKey(int32_t root, std::string_view path, uint32_t access, KeyHandle& key) override;
  int32_t CreateKey(int32_t root, std::string_view path, KeyHandle& key) override;
  void CloseKey(KeyHandle) override {}
  int32_t QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                     std::string& data) override;
  int32_t SetValue(KeyHandle key, std::string_view name, uint32_t type,
                   std::string_view data) override;
  int32_t EnumKey(KeyHandle key, uint32_t index, std::string& name) override;
  int32_t EnumValue(KeyHandle key, uint32_t index, std::string& name) override;
  int32_t DeleteKey(int32_t root, std::string_view path) override;
  int32_t DeleteValue(KeyHandle key, std::string_view name) override;
  std::unique_ptr<RegistryTransaction> BeginTransaction(int32_t root,
                                                        TransactionKind kind) override;
  bool StoresWholeTransactions() const override { return false; }
  std::string ExpandEnvironment(std::string_view text) override;

 private:
  /// Names compare without regard to case.
  struct NameLess {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const;
  };
  using Values = std::map<std::string, Value, NameLess>;
  struct Fault {
    int32_t status;
    int countdown;  // 0: every call
  };
  struct Hive {
    std::map<std::string, Values, NameLess> keys;  // by path
    int depth = 0;                                 // of open transactions
    int transactions = 0;                          // outermost ones so far
  };
  class Transaction;
  using Place = std::pair<int32_t, std::string>;  // root and path

  int32_t FaultOf(RegistryCall call);
  int32_t Enter(RegistryCall call, KeyHandle handle, Values*& values);
  void NoteWrite(int32_t root) { loose_writes_ += hives_.at(root).depth == 0; }
  Values& MakeKey(int32_t root, std::string_view path);
  KeyHandle HandleOf(int32_t root, std::string_view path);
  std::vector<std::string> SubKeys(const Place& place) const;

  std::map<int32_t, Hive> hives_{{kCurrentUser, {}}, {kLocalMachine, {}}};
  std::map<RegistryCall, Fault> faults_;
  std::vector<Place> handles_;
  int loose_writes_ = 0;
};

}  // namespace vesko
