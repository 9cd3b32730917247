#include "support/MemoryRegistry.h"

#include <algorithm>
#include <cstring>

namespace vesko {
namespace {

std::string Fold(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return folded;
}

std::string_view Leaf(std::string_view path) { return path.substr(path.rfind('\\') + 1); }

std::string_view Parent(std::string_view path) {
  size_t at = path.rfind('\\');
  return at == std::string_view::npos ? std::string_view() : path.substr(0, at);
}

template <typename Values>
auto FindValue(Values& values, std::string_view name) {
  return std::find_if(values.begin(), values.end(),
                      [&](const auto& value) { return Fold(value.name) == Fold(name); });
}

bool IsRoot(int32_t root) { return root == kCurrentUser || root == kLocalMachine; }

}  // namespace

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
  auto& values = MakeKey(root, path).values;
  auto found = FindValue(values, name);
  if (found == values.end()) found = values.insert(found, Value{std::string(name), 0, {}});
  found->type = type;
  found->data = data;
}

bool MemoryRegistry::HasKey(int32_t root, std::string_view path) const {
  return keys_.contains({root, Fold(path)});
}

std::optional<std::pair<uint32_t, std::string>> MemoryRegistry::Get(int32_t root,
                                                                    std::string_view path,
                                                                    std::string_view name) const {
  auto key = keys_.find({root, Fold(path)});
  if (key == keys_.end()) return std::nullopt;
  auto found = FindValue(key->second.values, name);
  if (found == key->second.values.end()) return std::nullopt;
  return std::pair(found->type, found->data);
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
  if (!IsRoot(root)) return kStatusInvalidHandle;
  if (!HasKey(root, path)) return kStatusFileNotFound;
  key = HandleOf({root, Fold(path)});
  return kStatusSuccess;
}

int32_t MemoryRegistry::CreateKey(int32_t root, std::string_view path, KeyHandle& key) {
  if (int32_t status = FaultOf(RegistryCall::kCreateKey)) return status;
  if (!IsRoot(root)) return kStatusInvalidHandle;
  NoteWrite(root);
  MakeKey(root, path);
  key = HandleOf({root, Fold(path)});
  return kStatusSuccess;
}

int32_t MemoryRegistry::QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                                   std::string& data) {
  Key* found;
  if (int32_t status = Enter(RegistryCall::kQueryValue, key, found)) return status;
  auto value = FindValue(found->values, name);
  if (value == found->values.end()) return kStatusFileNotFound;
  type = value->type;
  data = value->data;
  return kStatusSuccess;
}

int32_t MemoryRegistry::SetValue(KeyHandle key, std::string_view name, uint32_t type,
                                 std::string_view data) {
  Key* found;
  if (int32_t status = Enter(RegistryCall::kSetValue, key, found)) return status;
  const auto& [root, path] = handles_[key - 1];
  NoteWrite(root);
  Put(root, path, name, type, data);
  return kStatusSuccess;
}

int32_t MemoryRegistry::EnumKey(KeyHandle key, uint32_t index, std::string& name) {
  Key* found;
  if (int32_t status = Enter(RegistryCall::kEnumKey, key, found)) return status;
  auto names = SubKeys(handles_[key - 1]);
  if (index >= names.size()) return kStatusNoMoreItems;
  name = names[index];
  return kStatusSuccess;
}

int32_t MemoryRegistry::EnumValue(KeyHandle key, uint32_t index, std::string& name) {
  Key* found;
  if (int32_t status = Enter(RegistryCall::kEnumValue, key, found)) return status;
  if (index >= found->values.size()) return kStatusNoMoreItems;
  name = found->values[index].name;
  return kStatusSuccess;
}

int32_t MemoryRegistry::DeleteKey(int32_t root, std::string_view path) {
  if (int32_t status = FaultOf(RegistryCall::kDeleteKey)) return status;
  if (!HasKey(root, path)) return kStatusFileNotFound;
  if (!SubKeys({root, Fold(path)}).empty()) return kStatusAccessDenied;
  NoteWrite(root);
  keys_.erase({root, Fold(path)});
  return kStatusSuccess;
}

int32_t MemoryRegistry::DeleteValue(KeyHandle key, std::string_view name) {
  Key* found;
  if (int32_t status = Enter(RegistryCall::kDeleteValue, key, found)) return status;
  auto value = FindValue(found->values, name);
  if (value == found->values.end()) return kStatusFileNotFound;
  NoteWrite(handles_[key - 1].first);
  found->values.erase(value);
  return kStatusSuccess;
}

std::unique_ptr<RegistryTransaction> MemoryRegistry::BeginTransaction(int32_t root) {
  return std::make_unique<Transaction>(hives_[root]);
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

/// The key of a handle, where the operation is not to fail.
int32_t MemoryRegistry::Enter(RegistryCall call, KeyHandle handle, Key*& key) {
  if (int32_t status = FaultOf(call)) return status;
  if (handle < 1 || handle > handles_.size()) return kStatusInvalidHandle;
  auto found = keys_.find(handles_[handle - 1]);
  if (found == keys_.end()) return kStatusKeyDeleted;
  key = &found->second;
  return kStatusSuccess;
}

MemoryRegistry::Key& MemoryRegistry::MakeKey(int32_t root, std::string_view path) {
  for (std::string_view at = path; !at.empty(); at = Parent(at)) {
    Key& made = keys_[{root, Fold(at)}];
    if (made.name.empty()) made.name = Leaf(at);
  }
  return keys_[{root, Fold(path)}];
}

KeyHandle MemoryRegistry::HandleOf(Place place) {
  handles_.push_back(std::move(place));
  return handles_.size();
}

std::vector<std::string> MemoryRegistry::SubKeys(const Place& place) const {
  std::vector<std::string> names;
  for (const auto& [at, key] : keys_) {
    if (at.first == place.first && Parent(at.second) == place.second) names.push_back(key.name);
  }
  return names;
}

}  // namespace vesko
