#include "support/MemoryRegistry.h"

#include <algorithm>

namespace vesko {
namespace {

std::string Fold(std::string_view name) {
  std::string folded(name);
  for (char& c : folded) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return folded;
}

std::string_view Leaf(std::string_view path) {
  size_t at = path.rfind('\\');
  return at == std::string_view::npos ? path : path.substr(at + 1);
}

std::string_view Parent(std::string_view path) {
  size_t at = path.rfind('\\');
  return at == std::string_view::npos ? std::string_view() : path.substr(0, at);
}

template <typename Values>
auto FindValue(Values& values, std::string_view name) {
  return std::find_if(values.begin(), values.end(),
                      [&](const auto& value) { return Fold(value.name) == Fold(name); });
}

std::string Dword(int32_t number) {
  auto bits = static_cast<uint32_t>(number);
  std::string data;
  for (int shift = 0; shift < 32; shift += 8) data += static_cast<char>(bits >> shift);
  return data;
}

bool IsRoot(int32_t root) { return root == kCurrentUser || root == kLocalMachine; }

}  // namespace

class MemoryRegistry::Transaction : public RegistryTransaction {
 public:
  explicit Transaction(Hive& hive) : hive_(hive) {
    if (hive_.depth++ == 0) ++hive_.transactions;
  }
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
  Put(root, path, name, kRegDword, Dword(number));
}

void MemoryRegistry::Put(int32_t root, std::string_view path, std::string_view name, uint32_t type,
                         std::string data) {
  auto& values = MakeKey(root, path).values;
  auto found = FindValue(values, name);
  if (found == values.end()) found = values.insert(found, Value{std::string(name), 0, {}});
  found->type = type;
  found->data = std::move(data);
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
  if (type != kRegDword || data.size() != 4) return data.substr(0, data.find('\0'));
  uint32_t bits = 0;
  for (int i = 3; i >= 0; --i) bits = bits << 8 | static_cast<uint8_t>(data[i]);
  return std::to_string(static_cast<int32_t>(bits));
}

int MemoryRegistry::Transactions(int32_t root) const {
  auto found = hives_.find(root);
  return found == hives_.end() ? 0 : found->second.transactions;
}

int32_t MemoryRegistry::OpenKey(int32_t root, std::string_view path, uint32_t, KeyHandle& key) {
  if (int32_t status = FaultOf(RegistryCall::kOpenKey)) return status;
  if (!IsRoot(root)) return kStatusInvalidHandle;
  if (!path.empty() && !HasKey(root, path)) return kStatusFileNotFound;
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

void MemoryRegistry::CloseKey(KeyHandle) {}

int32_t MemoryRegistry::QueryValue(KeyHandle key, std::string_view name, uint32_t& type,
                                   std::string& data) {
  if (int32_t status = FaultOf(RegistryCall::kQueryValue)) return status;
  Key* found = KeyOf(key);
  if (!found) return kStatusInvalidHandle;
  auto value = FindValue(found->values, name);
  if (value == found->values.end()) return kStatusFileNotFound;
  type = value->type;
  data = value->data;
  return kStatusSuccess;
}

int32_t MemoryRegistry::SetValue(KeyHandle key, std::string_view name, uint32_t type,
                                 std::string_view data) {
  if (int32_t status = FaultOf(RegistryCall::kSetValue)) return status;
  if (!KeyOf(key)) return kStatusInvalidHandle;
  const auto& [root, path] = handles_[key - 1];
  NoteWrite(root);
  Put(root, path, name, type, std::string(data));
  return kStatusSuccess;
}

int32_t MemoryRegistry::EnumKey(KeyHandle key, uint32_t index, std::string& name) {
  if (int32_t status = FaultOf(RegistryCall::kEnumKey)) return status;
  if (!KeyOf(key)) return kStatusInvalidHandle;
  auto names = SubKeys(handles_[key - 1]);
  if (index >= names.size()) return kStatusNoMoreItems;
  name = names[index];
  return kStatusSuccess;
}

int32_t MemoryRegistry::EnumValue(KeyHandle key, uint32_t index, std::string& name) {
  if (int32_t status = FaultOf(RegistryCall::kEnumValue)) return status;
  Key* found = KeyOf(key);
  if (!found) return kStatusInvalidHandle;
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
  if (int32_t status = FaultOf(RegistryCall::kDeleteValue)) return status;
  Key* found = KeyOf(key);
  if (!found) return kStatusInvalidHandle;
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
    for (size_t at = 0; (at = expanded.find(reference, at)) != std::string::npos;) {
      expanded.replace(at, reference.size(), value);
      at += value.size();
    }
  }
  return expanded;
}

int32_t MemoryRegistry::FaultOf(RegistryCall call) {
  auto fault = faults_.find(call);
  if (fault == faults_.end()) return kStatusSuccess;
  if (fault->second.countdown == 0) return fault->second.status;
  if (--fault->second.countdown > 0) return kStatusSuccess;
  int32_t status = fault->second.status;
  faults_.erase(fault);
  return status;
}

MemoryRegistry::Key& MemoryRegistry::MakeKey(int32_t root, std::string_view path) {
  for (std::string_view at = path; !at.empty(); at = Parent(at)) {
    Key& made = keys_[{root, Fold(at)}];
    if (made.name.empty()) made.name = Leaf(at);
  }
  return keys_[{root, Fold(path)}];
}

void MemoryRegistry::NoteWrite(int32_t root) {
  if (hives_[root].depth == 0) ++loose_writes_;
}

MemoryRegistry::Key* MemoryRegistry::KeyOf(KeyHandle handle) {
  if (handle < 1 || handle > handles_.size()) return nullptr;
  const Place& place = handles_[handle - 1];
  auto found = keys_.find(place);
  if (found != keys_.end()) return &found->second;
  return place.second.empty() ? &keys_[place] : nullptr;
}

KeyHandle MemoryRegistry::HandleOf(const Place& place) {
  auto found = std::find(handles_.begin(), handles_.end(), place);
  if (found == handles_.end()) found = handles_.insert(found, place);
  return static_cast<KeyHandle>(found - handles_.begin()) + 1;
}

std::vector<std::string> MemoryRegistry::SubKeys(const Place& place) const {
  std::vector<std::string> names;
  for (const auto& [at, key] : keys_) {
    const auto& [root, path] = at;
    bool below = root == place.first && !path.empty() && Parent(path) == place.second;
    if (below) names.push_back(key.name);
  }
  return names;
}

}  // namespace vesko
