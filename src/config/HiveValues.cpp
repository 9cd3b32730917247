#include "config/HiveValues.h"

#include "base/RunTimeError.h"

namespace vesko {

bool HiveValues::KeyExists(const Text& key) {
  Select(key);
  return registry_.KeyExists();
}

Variant HiveValues::Read(const Text& key, TextView name, uint32_t type,
                         const Variant& default_value) {
  Select(key, name, type);
  registry_.Default = default_value;
  Variant value = registry_.Value();
  if (type != kRegSz && type != kRegExpandSz) return value;
  return Text(TrimNull(Trim(ToText(value))));
}

Text HiveValues::ReadText(const Text& key, TextView name, uint32_t type,
                          const Text& default_value) {
  Text text = default_value;
  IgnoreErrors([&] { text = ToText(Read(key, name, type, default_value)); });
  return text;
}

int32_t HiveValues::ReadNumber(const Text& key, TextView name, int32_t default_value) {
  const Variant value = Read(key, name, kRegDword, default_value);
  if (auto* text = std::get_if<Text>(&value)) return ToInt32(TrimNull(*text));
  return ToInt32(value);
}

void HiveValues::Write(const Text& key, TextView name, uint32_t type, const Variant& value) {
  Select(key, name, type);
  IgnoreErrors([&] { registry_.Value(value); });
}

std::vector<Text> HiveValues::SubKeys(const Text& key) {
  Select(key);
  std::vector<Text> names;
  int32_t count = 0;
  registry_.EnumerateSections(names, count);
  return names;
}

bool HiveValues::DeleteKey(const Text& key) {
  Select(key);
  return IgnoreErrors([&] { registry_.DeleteKey(); });
}

void HiveValues::DeleteValue(const Text& key, TextView name) {
  Select(key, name);
  IgnoreErrors([&] { registry_.DeleteValue(); });
}

void HiveValues::Select(const Text& key, TextView name, uint32_t type) {
  registry_.ClassKey = root_;
  registry_.SectionKey = key;
  registry_.ValueKey = name;
  registry_.ValueType = static_cast<int32_t>(type);
}

}  // namespace vesko
