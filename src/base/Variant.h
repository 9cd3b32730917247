#pragma once

#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

#include "base/Text.h"

namespace vesko {

/// What a Variant can hold by reference.
class Object {
 public:
  virtual ~Object() = default;
};

using ByteArray = std::vector<uint8_t>;
/// A type of its own and not std::vector itself: with alternatives that all are the library's own,
/// libstdc++ takes a variant for one that always has a value, and destroys what is not there when
/// copying it fails for lack of memory.
struct WordArray : std::vector<int16_t> {
  using std::vector<int16_t>::vector;
};

/// An automation value. std::monostate is Empty, the value of an unset variable.
using Variant = std::variant<std::monostate, bool, int16_t, int32_t, double, Text,
                             std::shared_ptr<Object>, ByteArray, WordArray>;

inline bool IsEmpty(const Variant& value) { return std::holds_alternative<std::monostate>(value); }

/// Order of two values: negative, 0 or positive. Empty sorts first and counts as equal to Empty
/// only, then numbers (by value, true is -1), then strings (by code unit), then objects (by
/// identity), then arrays (by element).
int Compare(const Variant& left, const Variant& right);

/// The value as text, number or position. Raise run-time error 13 for what cannot be one, 6 where
/// the number does not fit. Fractions are rounded half to even.
Text ToText(const Variant& value);
int32_t ToInt32(const Variant& value);
double ToDouble(const Variant& value);

}  // namespace vesko
