#include "config/cRegistry.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

constexpr int32_t kStatusOfUnknownType = 13;
constexpr int32_t kStatusThrown = -1;  // the only status of a write that is an error

std::string UpToNul(std::string data) {
  data.resize(std::min(data.size(), data.find('\0')));
  return data;
}

/// Little-endian; 0 for more than four bytes, which do not fit into the number asked for.
int32_t NumberOf(const std::string& data) {
  if (data.size() > 4) return 0;
  uint32_t bits = 0;
  for (size_t i = data.size(); i-- > 0;) bits = bits << 8 | static_cast<uint8_t>(data[i]);
  return static_cast<int32_t>(bits);
}

std::string DataOf(int32_t number) {
  auto bits = static_cast<uint32_t>(number);
  std::string data(4, '\0');
  for (size_t i = 0; i < 4; ++i) data[i] = static_cast<char>(bits >> (8 * i));
  return data;
}

/// Two percent signs with at least one character between them.
bool HoldsReference(TextView text) {
  size_t first = Find(text, u'%');
  return first != Text::npos && Find(text, u'%', first + 2) != Text::npos;
}

Text Shown(const Variant& value) {
  Text text;
  IgnoreErrors([&] { text = ToText(value); });
  return text;
}

}  // namespace

bool cRegistry::KeyExists() const {
  KeyHandle key = kNoKey;
  if (Open(kKeyQueryValue, key) != kStatusSuccess) return false;
  registry_.CloseKey(key);
  return true;
}

bool cRegistry::CreateKey() const {
  KeyHandle key = kNoKey;
  if (registry_.CreateKey(ClassKey, locale_.ToBytes(SectionKey), key) != kStatusSuccess) {
    Throw(kRegistryFailed, u"Failed to create registry Key: '" + SectionKey);
  }
  registry_.CloseKey(key);
  return true;
}

bool cRegistry::DeleteKey() const {
  if (registry_.DeleteKey(ClassKey, locale_.ToBytes(SectionKey)) != kStatusSuccess) {
    Throw(kRegistryFailed, u"Failed to delete registry Key: '" + Place(Field::kSection));
  }
  return true;
}

bool cRegistry::DeleteValue() const {
  KeyHandle key = kNoKey;
  if (Open(kKeyAllAccess, key) != kStatusSuccess) {
    Throw(kRegistryFailed,
          u"Failed to open key '" + Place(Field::kSection) + u"' for delete access");
  }
  if (registry_.DeleteValue(key, locale_.ToBytes(ValueKey)) != kStatusSuccess) {
    Throw(kRegistryFailed, u"Failed to delete registry Key: '" + Place(Field::kValue));
  }
  return true;  // the key stays open: handles cost nothing
}

Variant cRegistry::Value() {
  KeyHandle key = kNoKey;
  Open(kKeyQueryValue, key);
  uint32_t type = 0;
  std::string data;
  if (registry_.QueryValue(key, locale_.ToBytes(ValueKey), type, data) != kStatusSuccess) {
    return Default;
  }
  ValueType = static_cast<int32_t>(type);
  return FromData(type, std::move(data));
}

void cRegistry::Value(const Variant& value) {
  KeyHandle key = kNoKey;
  if (registry_.CreateKey(ClassKey, locale_.ToBytes(SectionKey), key) != kStatusSuccess) {
    ThrowWriteError(kRegistryFailed);
  }
  int32_t status = Store(key, value);
  registry_.CloseKey(key);
  if (status == kStatusThrown) ThrowWriteError(kRegistryWriteFailed);
  cached_ = value;
}

bool cRegistry::EnumerateValues(std::vector<Text>& names, int32_t& count) const {
  names.clear();
  KeyHandle key = kNoKey;
  if (Open(kKeyQueryValue, key) != kStatusSuccess) return false;
  std::string name;
  for (uint32_t i = 0; registry_.EnumValue(key, i, name) == kStatusSuccess; ++i) {
    names.push_back(locale_.ToText(name));
  }
  registry_.CloseKey(key);
  count = static_cast<int32_t>(names.size());
  return true;
}

bool cRegistry::EnumerateSections(std::vector<Text>& names, int32_t& count) const {
  KeyHandle key = kNoKey;
  if (Open(kKeyEnumerateSubKeys, key) != kStatusSuccess) return false;
  std::string name;
  uint32_t found = 0;
  while (registry_.EnumKey(key, found, name) == kStatusSuccess) {
    names.resize(found + 1);
    names[found++] = locale_.ToText(UpToNul(name));
  }
  registry_.CloseKey(key);
  count = static_cast<int32_t>(found);
  return true;
}

int32_t cRegistry::Open(uint32_t access, KeyHandle& key) const {
  return registry_.OpenKey(ClassKey, locale_.ToBytes(SectionKey), access, key);
}

Text cRegistry::Place(Field last) const {
  Text place = Decimal(ClassKey) + u"',Section: '" + SectionKey;
  return last == Field::kValue ? place + u"',Key: '" + ValueKey : place;
}

void cRegistry::Throw(int32_t number, const Text& description) const {
  throw RunTimeError(number, shell_.OwnName() + u".cRegistry", description);
}

void cRegistry::ThrowWriteError(int32_t number) const {
  Throw(number, u"Failed to set registry value Key: '" + Place(Field::kValue) + u"' to value: '" +
                    Shown(cached_) + u"'");
}

Variant cRegistry::FromData(uint32_t type, std::string data) const {
  switch (type) {
    case kRegSz:
    case kRegMultiSz:
      if (!data.empty()) data.pop_back();  // the terminating NUL
      return locale_.ToText(data);
    case kRegExpandSz:
      return locale_.ToText(UpToNul(registry_.ExpandEnvironment(UpToNul(std::move(data)))));
    case kRegDword:
      return NumberOf(data);
    case kRegDwordBigEndian:
      std::reverse(data.begin(), data.end());
      return NumberOf(data);
    default:
      return ByteArray(data.begin(), data.end());
  }
}

int32_t cRegistry::Store(KeyHandle key, const Variant& value) const {
  std::string name = locale_.ToBytes(ValueKey);
  switch (static_cast<uint32_t>(ValueType)) {
    case kRegSz:
    case kRegExpandSz:
      return StoreText(key, ToText(value));
    case kRegBinary:
      if (auto* bytes = std::get_if<ByteArray>(&value)) {
        return registry_.SetValue(key, name, kRegBinary, std::string(bytes->begin(), bytes->end()));
      }
      return kStatusSuccess;
    case kRegDword:
    case kRegDwordBigEndian:  // stored little-endian all the same
      if (std::holds_alternative<int16_t>(value) || std::holds_alternative<int32_t>(value)) {
        return registry_.SetValue(key, name, kRegDword, DataOf(ToInt32(value)));
      }
      return kStatusSuccess;
    default:
      return kStatusOfUnknownType;
  }
}

/// The length stored is that of the 16-bit text and one more, filled up with NULs; readers rely on
/// the first NUL only. Where narrow text is the longer one, it is stored whole with its NUL.
int32_t cRegistry::StoreText(KeyHandle key, const Text& text) const {
  std::string data = locale_.ToBytes(text);
  data.resize(std::max(2 * text.size(), data.size()) + 1);
  return registry_.SetValue(key, locale_.ToBytes(ValueKey),
                            HoldsReference(text) ? kRegExpandSz : kRegSz, data);
}

Variant ReadValue(cRegistry& registry, int32_t root, const Text& key, const Text& name,
                  uint32_t type, const Variant& default_value) {
  registry.ClassKey = root;
  registry.SectionKey = key;
  registry.ValueKey = name;
  registry.ValueType = static_cast<int32_t>(type);
  registry.Default = default_value;
  Variant value = registry.Value();
  if (type != kRegSz && type != kRegExpandSz) return value;
  return Text(TrimNull(Trim(ToText(value))));
}

void WriteValue(cRegistry& registry, int32_t root, const Text& key, const Text& name, uint32_t type,
                const Variant& value) {
  registry.ClassKey = root;
  registry.SectionKey = key;
  registry.ValueKey = name;
  registry.ValueType = static_cast<int32_t>(type);
  IgnoreErrors([&] { registry.Value(value); });
}

Text NumberedKey(TextView parent, int32_t n) {
  constexpr size_t kDigits = 8;
  Text digits = Decimal(n);
  if (digits.size() < kDigits) digits.insert(0, kDigits - digits.size(), u'0');
  return Text(parent) + u"\\" + digits;
}

}  // namespace vesko
