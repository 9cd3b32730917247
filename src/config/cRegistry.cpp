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
  RegistryKey key(registry_);
  return Open(key, kKeyQueryValue) == kStatusSuccess;
}

bool cRegistry::CreateKey() const {
  RegistryKey key(registry_);
  if (Create(key) != kStatusSuccess) {
    Throw(kRegistryFailed, u"Failed to create registry Key: '" + SectionKey);
  }
  return true;
}

bool cRegistry::DeleteKey() const {
  if (Noted(registry_.DeleteKey(ClassKey, locale_.ToBytes(SectionKey))) != kStatusSuccess) {
    Throw(kRegistryFailed, u"Failed to delete registry Key: '" + Place(Field::kSection));
  }
  return true;
}

bool cRegistry::DeleteValue() const {
  RegistryKey key(registry_);
  if (Open(key, kKeyAllAccess) != kStatusSuccess) {
    Throw(kRegistryFailed,
          u"Failed to open key '" + Place(Field::kSection) + u"' for delete access");
  }
  if (Noted(registry_.DeleteValue(key.Handle(), locale_.ToBytes(ValueKey))) != kStatusSuccess) {
    Throw(kRegistryFailed, u"Failed to delete registry Key: '" + Place(Field::kValue));
  }
  return true;
}

Variant cRegistry::Value() {
  RegistryKey key(registry_);
  if (Open(key, kKeyQueryValue) != kStatusSuccess) return Default;
  uint32_t type = 0;
  std::string data;
  const std::string name = locale_.ToBytes(ValueKey);
  if (Noted(registry_.QueryValue(key.Handle(), name, type, data)) != kStatusSuccess) {
    return Default;
  }
  ValueType = static_cast<int32_t>(type);
  return FromData(type, std::move(data));
}

void cRegistry::Value(const Variant& value) {
  RegistryKey key(registry_);
  if (Create(key) != kStatusSuccess) ThrowWriteError(kRegistryFailed);
  if (Store(key.Handle(), value) == kStatusThrown) ThrowWriteError(kRegistryWriteFailed);
  cached_ = value;
}

bool cRegistry::EnumerateValues(std::vector<Text>& names, int32_t& count) const {
  names.clear();
  RegistryKey key(registry_);
  if (Open(key, kKeyQueryValue) != kStatusSuccess) return false;
  std::string name;
  for (uint32_t i = 0; Noted(registry_.EnumValue(key.Handle(), i, name)) == kStatusSuccess; ++i) {
    names.push_back(locale_.ToText(name));
  }
  count = static_cast<int32_t>(names.size());
  return true;
}

bool cRegistry::EnumerateSections(std::vector<Text>& names, int32_t& count) const {
  RegistryKey key(registry_);
  if (Open(key, kKeyEnumerateSubKeys) != kStatusSuccess) return false;
  std::string name;
  uint32_t found = 0;
  while (Noted(registry_.EnumKey(key.Handle(), found, name)) == kStatusSuccess) {
    names.resize(found + 1);
    names[found++] = locale_.ToText(UpToNul(name));
  }
  count = static_cast<int32_t>(found);
  return true;
}

int32_t cRegistry::Open(RegistryKey& key, uint32_t access) const {
  return Noted(key.Open(ClassKey, locale_.ToBytes(SectionKey), access));
}

int32_t cRegistry::Create(RegistryKey& key) const {
  return Noted(key.Create(ClassKey, locale_.ToBytes(SectionKey)));
}

int32_t cRegistry::Set(KeyHandle key, uint32_t type, std::string_view data) const {
  return Noted(registry_.SetValue(key, locale_.ToBytes(ValueKey), type, data));
}

int32_t cRegistry::Noted(int32_t status) const {
  const bool told =
      status == kStatusSuccess || status == kStatusFileNotFound || status == kStatusNoMoreItems;
  if (!told && failure_ == kStatusSuccess) failure_ = status;
  return status;
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
  switch (static_cast<uint32_t>(ValueType)) {
    case kRegSz:
    case kRegExpandSz:
      return StoreText(key, ToText(value));
    case kRegBinary:
      if (auto* bytes = std::get_if<ByteArray>(&value)) {
        return Set(key, kRegBinary, std::string(bytes->begin(), bytes->end()));
      }
      return kStatusSuccess;
    case kRegDword:
    case kRegDwordBigEndian:  // stored little-endian all the same
      if (std::holds_alternative<int16_t>(value) || std::holds_alternative<int32_t>(value)) {
        return Set(key, kRegDword, DataOf(ToInt32(value)));
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
  return Set(key, HoldsReference(text) ? kRegExpandSz : kRegSz, data);
}

Text NumberedKey(TextView parent, int32_t n) {
  constexpr size_t kDigits = 8;
  Text digits = Decimal(n);
  if (digits.size() < kDigits) digits.insert(0, kDigits - digits.size(), u'0');
  return Text(parent) + u"\\" + digits;
}

}  // namespace vesko
