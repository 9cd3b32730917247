#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <unordered_map>
#include <utility>

#include "base/RunTimeError.h"
#include "base/Text.h"

namespace vesko {

/// An insertion-ordered collection with unique text keys, which are compared exactly. Positions
/// count from 1. The collection owns its values.
///
/// Adding, finding and removing by key, and removing the first value, take constant time on
/// average. The first access by position after removals from the middle takes one pass over the
/// collection.
template <typename Value>
class KeyedCollection {
 public:
  /// Number of values.
  size_t Count() const { return positions_.size(); }

  /// Appends a value. Raises run-time error 457 and changes nothing when the key is already there.
  void Add(Value value, const Text& key) {
    if (positions_.contains(key)) throw RunTimeError(kKeyAlreadyPresent);
    slots_.push_back(Slot{key, std::move(value)});
    try {
      positions_.emplace(key, next_);
    } catch (...) {  // no memory: a value that no key leads to must not stay
      slots_.pop_back();
      throw;
    }
    ++next_;
  }

  /// Returns the value under the key, or null. The pointer stays valid until the next removal or
  /// access by position.
  const Value* Find(const Text& key) const {
    auto found = positions_.find(key);
    return found == positions_.end() ? nullptr : &*slots_[found->second - first_].value;
  }
  /// The same; the value may be changed.
  Value* Find(const Text& key) { return const_cast<Value*>(std::as_const(*this).Find(key)); }

  /// Returns the value at a position from 1 to Count. Raises run-time error 9 for any other.
  const Value& Item(size_t position) {
    if (position < 1 || position > Count()) throw RunTimeError(kSubscriptOutOfRange);
    Compact();
    return *slots_[position - 1].value;
  }

  /// Removes the value under the key. Returns false when there is none.
  bool Remove(const Text& key) {
    auto found = positions_.find(key);
    if (found == positions_.end()) return false;
    slots_[found->second - first_].value.reset();
    positions_.erase(found);
    DropEmptyFront();
    // The number of holes stays in proportion to that of values, however long the collection lives.
    if (slots_.size() > 2 * positions_.size() + kSpareHoles) Compact();
    return true;
  }

  /// Removes the first value. Does nothing when there is none.
  void RemoveFirst() {
    if (slots_.empty()) return;
    positions_.erase(slots_.front().key);
    slots_.front().value.reset();
    DropEmptyFront();
  }

  /// Calls visit(value) for each value in order; a visit that returns false ends the walk. The
  /// collection must not be changed during the walk.
  template <typename Visit>
  void ForEach(Visit&& visit) const {
    for (const Slot& slot : slots_) {
      if (slot.value && !visit(*slot.value)) return;
    }
  }

  /// The same, and a visit may change its value.
  template <typename Visit>
  void ForEach(Visit&& visit) {
    for (Slot& slot : slots_) {
      if (slot.value && !visit(*slot.value)) return;
    }
  }

 private:
  /// A value that was removed leaves a hole: a slot without one.
  struct Slot {
    Text key;
    std::optional<Value> value;
  };

  static constexpr size_t kSpareHoles = 64;

  /// Drops the holes before the first value.
  void DropEmptyFront() {
    while (!slots_.empty() && !slots_.front().value) {
      slots_.pop_front();
      ++first_;
    }
  }

  /// Drops all holes, so that a position is an index.
  void Compact() {
    if (slots_.size() == positions_.size()) return;
    std::erase_if(slots_, [](const Slot& slot) { return !slot.value; });
    first_ = next_ - slots_.size();
    for (size_t i = 0; i < slots_.size(); ++i) positions_[slots_[i].key] = first_ + i;
  }

  std::deque<Slot> slots_;
  std::unordered_map<Text, size_t> positions_;  // key to running number of the slot
  size_t first_ = 0;                            // running number of slots_.front()
  size_t next_ = 0;                             // running number of the next slot
};

}  // namespace vesko
