#include "support/MemoryRegistry.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "base/Ascii.h"

namespace vesko {
namespace {

std::string_view Leaf(std::string_view path) { return path.substr(path.rfind('\\') + 1); }

std::string_view Parent(std::string_view path) {
  size_t at = path.rfind('\\');
  return at == std::string_view::npos ? std::string_view() : path.substr(0, at);
}

}  // namespace

// By hand, as an unoptimised build takes twenty times as long for the algorithm of the library.
bool MemoryRegistry::NameLess::operator()(std::string_view a, std::string_view b) const {
  const size_t length = std::min(a.size(), b.size());
  const char* left = a.data();
  const char* right = b.data();
  for (size_t i = 0; i < length; ++i) {
    if (left[i] == right[i]) continue;
    const char x = AsciiLower(left[i]), y = AsciiLower(right[i]);
    if (x != y) return x < y;
  }
  return a.size() < b.size();
}

class MemoryRegistry::Transaction : public RegistryTransaction {
 public:
  explicit Transaction(Hive& hive) : hive_(hive) { hive_.transactions += hive_.depth++ == 0; }
  ~Transaction() override { --hive_.depth; }

 private:
  Hive& hive_;
};

void MemoryRegistry::PutText(int32_t root, std::string_view path, std::string_view name,
                             std::string_view text) {
  Put(root, path, name, kRegSz, std::string(text) + '\0');
}

void MemoryRegistry::PutNumber(int32_t root, std::string_view path, std::string_view name,
                               int32_t number) {
  Put(root, path, name, kRegDword, {reinterpret_cast<const char*>(&number), sizeof number});
}

void MemoryRegistry::Put(int32_t root, std::string_view path, std::string_view name, uint32_t type,
                         std::string_view data) {
  MakeKey(root, path)[std::string(name)] = {type, std::string(data)};
}

bool MemoryRegistry::HasKey(int32_t root, std::string_view path) const {
  return hives_.at(root).keys.contains(path);
}

std::optional<MemoryRegistry::Value> MemoryRegistry::Get(int32_t root, std::string_view path,
                                                         std::string_view name) const {
  const auto& keys = hives_.at(root).keys;
  const auto key = keys.find(path);
  if (key == keys.end()) return std::nullopt;
  const auto found = key->second.find(name);
  if (found == key->second.end()) return std::nullopt;
  return found->second;
}

std::string MemoryRegistry::Show(int32_t root, std::string_view path, std::string_view name) const {
  auto value = Get(root, path, name);
  if (!value) return "(none)";
  const auto& [type, data] = *value;
  int32_t number;
  if (type != kRegDword || data.size() != sizeof number) return data.c_str();
  std::memcpy(&number, data.data(), sizeof number);
  return std::to_string(number);
}

int32_t MemoryRegistry::OpenKey(int32_t root, std::string_view path, uint32_t, KeyHandle& key) {
  if (int32_t status = FaultOf(RegistryCall::kOpenKey)) return status;
  if (!hives_.contains(root)) return kStatusInvalidHandle;
  if (!HasKey(root, path)) return kStatusFileNotFound;
  key = HandleOf(root, path);
  return kStatusSuccess;
}

int32_t MemoryRegistry::CreateKey(int32_t root, std::string_view path, KeyHandle& key) {
  if (int32_t status = FaultOf(RegistryCall::kCreateKey)) return status;
  if (!hives_.contains(root)) return kStatusInvalidHandle;
  NoteWrite(root);
  MakeKey(root, path);
  key = HandleOf(root, path);
  return kStatusSuccess;
}

int32_t MemoryRegistry::QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                                   std::string& data) {
  Values* values;
  if (int32_t status = Enter(RegistryCall::kQueryValue, key, values)) return status;
  const auto value = values->find(name);
  if (value == values->end()) return kStatusFileNotFound;
  std::tie(type, data) = value->second;
  return kStatusSuccess;
}

int32_t MemoryRegistry::SetValue(KeyHandle key, std::string_view name, uint32_t type,
                                 std::string_view data) {
  Values* values;
  if (int32_t status = Enter(RegistryCall::kSetValue, key, values)) return status;
  NoteWrite(handles_[key - 1].first);
  (*values)[std::string(name)] = {type, std::string(data)};
  return kStatusSuccess;
}

int32_t MemoryRegistry::EnumKey(KeyHandle key, uint32_t index, std::string& name) {
  Values* values;
  if (int32_t status = Enter(RegistryCall::kEnumKey, key, values)) return status;
  const auto names = SubKeys(handles_[key - 1]);
  if (index >= names.size()) return kStatusNoMoreItems;
  name = names[index];
  return kStatusSuccess;
}

int32_t MemoryRegistry::EnumValue(KeyHandle key, uint32_t index, std::string& name) {
  Values* values;
  if (int32_t status = Enter(RegistryCall::kEnumValue, key, values)) return status;
  if (index >= values->size()) return kStatusNoMoreItems;
  name = std::next(values->begin(), index)->first;
  return kStatusSuccess;
}

int32_t MemoryRegistry::DeleteKey(int32_t root, std::string_view path) {
  if (int32_t status = FaultOf(RegistryCall::kDeleteKey)) return status;
  auto& keys = hives_.at(root).keys;
  const auto key = keys.find(path);
  if (key == keys.end()) return kStatusFileNotFound;
  if (!SubKeys({root, key->first}).empty()) return kStatusAccessDenied;
  NoteWrite(root);
  keys.erase(key);
  return kStatusSuccess;
}

int32_t MemoryRegistry::DeleteValue(KeyHandle key, std::string_view name) {
  Values* values;
  if (int32_t status = Enter(RegistryCall::kDeleteValue, key, values)) return status;
  NoteWrite(handles_[key - 1].first);
  return values->erase(std::string(name)) ? kStatusSuccess : kStatusFileNotFound;
}

std::unique_ptr<RegistryTransaction> MemoryRegistry::BeginTransaction(int32_t root,
                                                                      TransactionKind) {
  if (on_transaction) on_transaction();
  return std::make_unique<Transaction>(hives_.at(root));
}

std::string MemoryRegistry::ExpandEnvironment(std::string_view text) {
  std::string expanded(text);
  for (const auto& [name, value] : environment) {
    std::string reference = "%" + name + "%";
    for (size_t at; (at = expanded.find(reference)) != std::string::npos;) {
      expanded.replace(at, reference.size(), value);
    }
  }
  return expanded;
}

int32_t MemoryRegistry::FaultOf(RegistryCall call) {
  auto fault = faults_.find(call);
  if (fault == faults_.end()) return kStatusSuccess;
  auto& [status, countdown] = fault->second;
  if (countdown == 0) return status;
  if (--countdown > 0) return kStatusSuccess;
  return faults_.extract(fault).mapped().status;
}

/// The values of a handle's key, where the operation is not to fail.
int32_t MemoryRegistry::Enter(RegistryCall call, KeyHandle handle, Values*& values) {
  if (int32_t status = FaultOf(call)) return status;
  if (handle < 1 || handle > handles_.size()) return kStatusInvalidHandle;
  const auto& [root, path] = handles_[handle - 1];
  auto& keys = hives_.at(root).keys;
  const auto found = keys.find(path);
  if (found == keys.end()) return kStatusKeyDeleted;
  values = &found->second;
  return kStatusSuccess;
}

MemoryRegistry::Values& MemoryRegistry::MakeKey(int32_t root, std::string_view path) {
  auto& keys = hives_.at(root).keys;
  for (std::string_view at = path; !at.empty(); at = Parent(at)) keys[std::string(at)];
  return keys[std::string(path)];
}

KeyHandle MemoryRegistry::HandleOf(int32_t root, std::string_view path) {
  handles_.emplace_back(root, path);
  return handles_.size();
}

std::vector<std::string> MemoryRegistry::SubKeys(const Place& place) const {
  const auto& [root, parent] = place;
  std::vector<std::string> names;
  for (const auto& [path, values] : hives_.at(root).keys) {
    if (std::ranges::equal(Parent(path), parent, {}, AsciiLower<char>, AsciiLower<char>))
      names.emplace_back(Leaf(path));
  }
  return names;
}

}  // namespace vesko
