#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/Text.h"
#include "base/Variant.h"

namespace vesko {

/// A list of values with positions from 1 to Count. An unsorted list, which it is at first, appends
/// and searches one by one. A sorted list keeps ascending order by vesko::Compare, refuses
/// duplicates and searches by bisection.
class cCollect {
 public:
  /// Shows a message with an exclamation icon and one OK button. May be empty: then nothing is
  /// shown.
  using ShowExclamation = std::function<void(const Text& message)>;

  explicit cCollect(ShowExclamation show = {}) : show_(std::move(show)) {}

  /// Changes the mode. Where the list holds values, a message is shown instead and the mode stays.
  void Sorted(bool sorted);

  /// Number of values.
  int32_t Count() const;

  /// Returns the position of an equal value, or 0 when there is none. Of several equal values an
  /// unsorted list finds the first.
  int32_t Index(const Variant& data) const;

  /// Returns the value at a position, or Empty at 0 and above Count. Raises run-time error 9 for a
  /// negative position.
  Variant Item(int32_t n) const;

  /// Adds a value: at the end, or in its place in a sorted list, which ignores one that it has. A
  /// string is trimmed of spaces and cut at its first NUL, in the caller's variable as well. A
  /// sorted list raises run-time error 6 (overflow) where a search position exceeds 16 bits.
  void Add(Variant& data);

  /// Removes all values. The mode stays.
  void Clear();

  /// Removes the value at a position. Does nothing at 0 and above Count. Raises run-time error 9
  /// for a negative position.
  void Remove(int32_t n);

  /// Replaces the value at a position. `data` is neither trimmed nor put in order, so that a sorted
  /// list may be out of order afterwards. Does nothing at 0 and above Count. Raises run-time error
  /// 13 for a position that is not a number and 9 for a negative one.
  void RepIace(const Variant& position, const Variant& data);

  /// Reads every value, and has no other effect.
  void Show() const;

 private:
  ShowExclamation show_;
  std::vector<Variant> items_;
  bool sorted_ = false;
};

}  // namespace vesko
