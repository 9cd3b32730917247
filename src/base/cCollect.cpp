#include "base/cCollect.h"

#include <cmath>
#include <limits>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

constexpr TextView kSortedRefused = u"You can not change 'Sorted' property with non-empty data !!!";

/// Two neighbouring positions of a sorted list between which a value belongs, or that hold it.
struct Neighbours {
  int32_t lo;
  int32_t hi;
};

/// Binary search in a sorted, non-empty list. Raises overflow where a position or the sum of two
/// passes `limit`.
Neighbours Search(const std::vector<Variant>& items, const Variant& data, int64_t limit) {
  int64_t lo = 1;
  int64_t hi = static_cast<int64_t>(items.size());
  while (hi - lo >= 2) {
    if (lo + hi > limit) throw RunTimeError(kOverflow);
    int64_t mid = (lo + hi) / 2;
    (Compare(items[mid - 1], data) < 0 ? lo : hi) = mid;
  }
  return {static_cast<int32_t>(lo), static_cast<int32_t>(hi)};
}

/// Where to insert a value into a sorted, non-empty list (0 is the front), or -1 for one that is
/// already there. The positions of an insertion are 16 bits wide, which bounds the size of a
/// sorted list.
ptrdiff_t InsertionPoint(const std::vector<Variant>& items, const Variant& data) {
  constexpr int64_t kLimit = std::numeric_limits<int16_t>::max();
  if (static_cast<int64_t>(items.size()) > kLimit) throw RunTimeError(kOverflow);
  if (Compare(data, items.front()) < 0) return 0;
  if (Compare(data, items.back()) > 0) return static_cast<ptrdiff_t>(items.size());
  auto [lo, hi] = Search(items, data, kLimit);
  bool present = Compare(items[lo - 1], data) == 0 || Compare(items[hi - 1], data) == 0;
  return present ? -1 : hi - 1;
}

int32_t SortedIndex(const std::vector<Variant>& items, const Variant& data) {
  if (items.empty()) return 0;
  if (Compare(data, items.front()) < 0 || Compare(data, items.back()) > 0) return 0;
  auto [lo, hi] = Search(items, data, std::numeric_limits<int64_t>::max());
  if (Compare(items[hi - 1], data) == 0) return hi;
  return Compare(items[lo - 1], data) == 0 ? lo : 0;
}

}  // namespace

void cCollect::Sorted(bool sorted) {
  if (sorted != sorted_ && !items_.empty()) {
    if (show_) show_(Text(kSortedRefused));
    return;
  }
  sorted_ = sorted;
}

int32_t cCollect::Count() const { return static_cast<int32_t>(items_.size()); }

int32_t cCollect::Index(const Variant& data) const {
  if (sorted_) return SortedIndex(items_, data);
  for (size_t i = 0; i < items_.size(); ++i) {
    if (Compare(items_[i], data) == 0) return static_cast<int32_t>(i + 1);
  }
  return 0;
}

Variant cCollect::Item(int32_t n) const {
  if (n == 0 || n > Count()) return {};
  if (n < 0) throw RunTimeError(kSubscriptOutOfRange);
  return items_[n - 1];
}

void cCollect::Add(Variant& data) {
  if (auto* text = std::get_if<Text>(&data)) *text = Text(TrimNull(Trim(*text)));
  if (!sorted_ || items_.empty()) {
    items_.push_back(data);
    return;
  }
  ptrdiff_t at = InsertionPoint(items_, data);
  if (at >= 0) items_.insert(items_.begin() + at, data);
}

void cCollect::Clear() { items_.clear(); }

void cCollect::Remove(int32_t n) {
  if (n == 0 || n > Count()) return;
  if (n < 0) throw RunTimeError(kSubscriptOutOfRange);
  items_.erase(items_.begin() + (n - 1));
}

void cCollect::RepIace(const Variant& position, const Variant& data) {
  double n = std::nearbyint(ToDouble(position));  // half to even
  if (n == 0 || n > Count()) return;
  if (n < 0) throw RunTimeError(kSubscriptOutOfRange);
  items_[static_cast<size_t>(n) - 1] = data;
}

void cCollect::Show() const {}

}  // namespace vesko
