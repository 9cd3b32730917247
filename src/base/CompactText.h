#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <vector>

#include "base/Text.h"

namespace vesko {

/// Text that is kept for long rather than worked on: it takes one byte a character when all of them
/// are below U+0100 and two otherwise, in one allocation of just that size, and no memory beside a
/// pointer when it is empty. It converts from and to Text, by a copy each time. Positions and
/// lengths count characters as those of Text do, of which there must be fewer than 2^31.
class CompactText {
 public:
  CompactText() = default;

  /// Implicit, so that whatever was a Text can become compact where it is declared.
  template <std::convertible_to<TextView> T>
  CompactText(const T& text) : CompactText(TextView(text), Copy()) {}

  /// Copies take memory of their own. A text that was moved from is empty.
  CompactText(const CompactText& other);
  CompactText(CompactText&& other) noexcept = default;
  CompactText& operator=(const CompactText& other) { return *this = CompactText(other); }
  CompactText& operator=(CompactText&& other) noexcept = default;

  /// Implicit as well, for the many that take a Text.
  operator Text() const { return Slice(0, size()); }

  /// Replaces a text by this one. The text's memory is used again if it suffices.
  void AssignTo(Text& text) const { Get(0, size(), text); }

  /// Named as those of Text are, so that either type can stand for the other.
  size_t size() const;
  bool empty() const { return size() == 0; }

  /// At most `count` characters from `from` on. Precondition: `from` is not beyond the end.
  Text Slice(size_t from, size_t count) const;

  /// Position of the first `needle` or Text::npos. Precondition: the needle is 7-bit.
  size_t Find(TextView needle) const;

  /// Cuts characters off in place; the memory stays as it is. Precondition: there are so many.
  void RemovePrefix(size_t count);
  void RemoveSuffix(size_t count);

  /// The parts in their order. Each part is freed as soon as it has been copied.
  static CompactText Join(std::vector<CompactText> parts);

  /// Exact comparison, of characters and not of how they are kept.
  template <std::convertible_to<TextView> T>
  friend bool operator==(const CompactText& left, const T& right) {
    return left.Equals(right);
  }
  friend bool operator==(const CompactText& left, const CompactText& right) {
    return left.Equals(Text(right));
  }

 private:
  struct Copy {};
  struct Header;  // how many characters follow, and how wide they are

  CompactText(TextView text, Copy);

  /// Uninitialised characters.
  static CompactText Allocate(size_t size, bool is_wide);

  // Precondition of the two that return what is in the block: there is one.
  Header& GetHeader() const;
  bool IsWide() const;
  char* Characters() const;
  size_t Bytes() const;

  // Copies the characters, widened if need be.
  void CopyTo(char* characters, bool is_wide) const;
  void Get(size_t from, size_t count, Text& text) const;
  bool Equals(TextView other) const;

  std::unique_ptr<char[]> block_;  // a Header and the characters; null when empty
};

}  // namespace vesko
