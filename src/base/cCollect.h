#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/Text.h"
#include "base/Variant.h"

namespace vesko {

/// A 1-based list of values. Unsorted it appends; sorted it keeps ascending order, refuses
/// duplicates and finds by binary search.
class cCollect {
 public:
  /// Shows a message with an exclamation icon and one OK button. May be empty.
  using ShowExclamation = std::function<void(const Text& message)>;

  explicit cCollect(ShowExclamation show = {}) : show_(std::move(show)) {}

  /// Changes the mode. With values in the list the mode stays and a message is shown.
  void Sorted(bool sorted);

  int32_t Count() const;

  /// Position of an equal value, 0 when there is none.
  int32_t Index(const Variant& data) const;

  /// The value at a position; Empty at 0 and above Count; run-time error 9 below 0.
  Variant Item(int32_t n) const;

  /// A string is trimmed and cut at its first NUL, in the caller's variable too. Sorted lists raise
  /// run-time error 6 (overflow) where a search position passes 16 bits.
  void Add(Variant& data);

  void Clear();

  /// Nothing at 0 and above Count; run-time error 9 below 0.
  void Remove(int32_t n);

  /// Replaces the value at a position, whatever the mode; data are taken as they are. Nothing at 0
  /// and above Count. Raises run-time error 13 for a position that is no number, 9 below 0.
  void RepIace(const Variant& position, const Variant& data);

  /// Walks over the values; nothing is to be seen of it.
  void Show() const;

 private:
  ShowExclamation show_;
  std::vector<Variant> items_;
  bool sorted_ = false;
};

}  // namespace vesko
