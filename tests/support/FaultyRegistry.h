#pragma once

#include <memory>
#include <string>

#include "platform/Registry.h"

namespace vesko {

/// Passes every call on to a real registry, but for those that a test makes fail or that end it.
/// Calls are counted from 1; closing a key and expanding a text are none.
class FaultyRegistry : public Registry {
 public:
  /// Thrown in place of a write: the process ends here.
  struct Killed {};

  /// The real registry must outlive this one.
  explicit FaultyRegistry(Registry& real) : real_(real) {}

  /// The n-th call does nothing but return the status, and with `lasting` every later one too.
  void Fail(int n, bool lasting, int32_t status) { fault_ = {n, lasting ? 1 << 30 : n, status}; }
  void Heal() { fault_ = {}; }
  /// The n-th call that writes is not made.
  void KillAtWrite(int n) { killing_write_ = n; }

  /// How often the real registry was asked so far, failed calls included.
  int Calls() const { return calls_; }

  int32_t OpenKey(int32_t root, std::string_view path, uint32_t access, KeyHandle& key) override {
    return Read([&] { return real_.OpenKey(root, path, access, key); });
  }
  int32_t CreateKey(int32_t root, std::string_view path, KeyHandle& key) override {
    return Write([&] { return real_.CreateKey(root, path, key); });
  }
  void CloseKey(KeyHandle key) override { real_.CloseKey(key); }
  int32_t QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                     std::string& data) override {
    return Read([&] { return real_.QueryValue(key, name, type, data); });
  }
  int32_t SetValue(KeyHandle key, std::string_view name, uint32_t type,
                   std::string_view data) override {
    return Write([&] { return real_.SetValue(key, name, type, data); });
  }
  int32_t EnumKey(KeyHandle key, uint32_t index, std::string& name) override {
    return Read([&] { return real_.EnumKey(key, index, name); });
  }
  int32_t EnumValue(KeyHandle key, uint32_t index, std::string& name) override {
    return Read([&] { return real_.EnumValue(key, index, name); });
  }
  int32_t DeleteKey(int32_t root, std::string_view path) override {
    return Write([&] { return real_.DeleteKey(root, path); });
  }
  int32_t DeleteValue(KeyHandle key, std::string_view name) override {
    return Write([&] { return real_.DeleteValue(key, name); });
  }
  std::unique_ptr<RegistryTransaction> BeginTransaction(int32_t root,
                                                        TransactionKind kind) override {
    return std::make_unique<Transaction>(*this, real_.BeginTransaction(root, kind));
  }
  bool StoresWholeTransactions() const override { return real_.StoresWholeTransactions(); }
  std::string ExpandEnvironment(std::string_view text) override {
    return real_.ExpandEnvironment(text);
  }

 private:
  class Transaction : public RegistryTransaction {
   public:
    Transaction(FaultyRegistry& registry, std::unique_ptr<RegistryTransaction> real)
        : registry_(registry), real_(std::move(real)) {}
    int32_t Commit() override {
      return registry_.Write([&] { return real_->Commit(); });
    }

   private:
    FaultyRegistry& registry_;
    std::unique_ptr<RegistryTransaction> real_;
  };

  struct Fault {
    int first = 0;
    int last = 0;
    int32_t status = kStatusSuccess;
  };

  template <typename Call>
  int32_t Read(Call&& call) {
    ++calls_;
    return calls_ >= fault_.first && calls_ <= fault_.last ? fault_.status : call();
  }
  template <typename Call>
  int32_t Write(Call&& call) {
    if (++writes_ == killing_write_) throw Killed();
    return Read(call);
  }

  Registry& real_;
  Fault fault_;
  int killing_write_ = 0;
  int calls_ = 0;
  int writes_ = 0;
};

}  // namespace vesko
