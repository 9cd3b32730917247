#pragma once

#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

#include "base/Text.h"

namespace vesko {

/// Base of what a Variant can hold by reference.
class Object {
 public:
  virtual ~Object() = default;
};

/// Arrays count from 0.
using ByteArray = std::vector<uint8_t>;
/// A type of its own and not std::vector itself: with alternatives that all are the library's own,
/// libstdc++ takes a variant for one that always has a value, and destroys what is not there when
/// copying it fails for lack of memory.
struct WordArray : std::vector<int16_t> {
  using std::vector<int16_t>::vector;
};

/// An automation value. std::monostate is Empty, the value of an unset variable. Objects are
/// shared, all other values are copied.
using Variant = std::variant<std::monostate, bool, int16_t, int32_t, double, Text,
                             std::shared_ptr<Object>, ByteArray, WordArray>;

/// Whether the value is Empty. An empty string is not.
inline bool IsEmpty(const Variant& value) { return std::holds_alternative<std::monostate>(value); }

/// Returns the order of two values: negative, 0 or positive. Empty sorts first and equals only
/// Empty; then come numbers (by value, true is -1), strings (by code unit), objects (by identity)
/// and arrays (by element).
int Compare(const Variant& left, const Variant& right);

/// Convert a value to text or to a number. They raise run-time error 13 for a value that cannot be
/// converted and 6 for a number that does not fit. Fractions are rounded half to even.
Text ToText(const Variant& value);
int32_t ToInt32(const Variant& value);
double ToDouble(const Variant& value);

}  // namespace vesko
