#include "base/CompactText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <string_view>

namespace vesko {

struct CompactText::Header {
  uint32_t size : 31;
  uint32_t is_wide : 1;
};

namespace {

bool IsNarrow(TextView text) {
  char16_t all = 0;
  for (char16_t c : text) all = static_cast<char16_t>(all | c);
  return all < 0x100;
}

void Widen(const char* from, size_t size, char16_t* to) {
  std::transform(from, from + size, to, [](char c) { return static_cast<unsigned char>(c); });
}

}  // namespace

CompactText::CompactText(TextView text, Copy) {
  if (text.empty()) return;
  const bool is_wide = !IsNarrow(text);
  *this = Allocate(text.size(), is_wide);
  if (is_wide) {
    std::memcpy(Characters(), text.data(), Bytes());
  } else {
    std::transform(text.begin(), text.end(), Characters(),
                   [](char16_t c) { return static_cast<char>(c); });
  }
}

CompactText::CompactText(const CompactText& other) {
  if (other.empty()) return;
  *this = Allocate(other.size(), other.IsWide());
  std::memcpy(Characters(), other.Characters(), Bytes());
}

CompactText CompactText::Allocate(size_t size, bool is_wide) {
  CompactText text;
  if (size == 0) return text;
  text.block_.reset(new char[sizeof(Header) + size * (is_wide ? sizeof(char16_t) : 1)]);
  text.GetHeader() = {static_cast<uint32_t>(size), is_wide};
  return text;
}

CompactText::Header& CompactText::GetHeader() const {
  return *reinterpret_cast<Header*>(block_.get());
}

size_t CompactText::size() const { return block_ ? GetHeader().size : 0; }
bool CompactText::IsWide() const { return block_ && GetHeader().is_wide; }
char* CompactText::Characters() const { return block_.get() + sizeof(Header); }
size_t CompactText::Bytes() const { return size() * (IsWide() ? sizeof(char16_t) : 1); }

Text CompactText::Slice(size_t from, size_t count) const {
  Text text;
  Get(from, std::min(count, size() - from), text);
  return text;
}

void CompactText::Get(size_t from, size_t count, Text& text) const {
  text.resize(count);
  if (IsWide()) {
    std::memcpy(text.data(), Characters() + from * sizeof(char16_t),
                text.size() * sizeof(char16_t));
  } else if (!text.empty()) {
    Widen(Characters() + from, text.size(), text.data());
  }
}

size_t CompactText::Find(TextView needle) const {
  if (IsWide()) {
    return vesko::Find({reinterpret_cast<const char16_t*>(Characters()), size()}, needle);
  }
  const std::string narrow(needle.begin(), needle.end());
  return empty() ? (needle.empty() ? 0 : Text::npos)
                 : std::string_view(Characters(), size()).find(narrow);
}

void CompactText::RemovePrefix(size_t count) {
  if (count == 0) return;
  const size_t skipped = count * (IsWide() ? sizeof(char16_t) : 1);
  std::memmove(Characters(), Characters() + skipped, Bytes() - skipped);
  RemoveSuffix(count);
}

void CompactText::RemoveSuffix(size_t count) {
  if (block_) GetHeader().size -= static_cast<uint32_t>(count);
}

CompactText CompactText::Join(std::vector<CompactText> parts) {
  const size_t size =
      std::accumulate(parts.begin(), parts.end(), size_t{0},
                      [](size_t sum, const CompactText& part) { return sum + part.size(); });
  const bool is_wide = std::ranges::any_of(parts, &CompactText::IsWide);
  CompactText whole = Allocate(size, is_wide);
  char* next = whole.Characters();
  for (CompactText& part : parts) {
    part.CopyTo(next, is_wide);
    next += part.size() * (is_wide ? sizeof(char16_t) : 1);
    part = CompactText();
  }
  return whole;
}

void CompactText::CopyTo(char* characters, bool is_wide) const {
  if (empty()) return;
  if (is_wide && !IsWide()) {
    Widen(Characters(), size(), reinterpret_cast<char16_t*>(characters));
  } else {
    std::memcpy(characters, Characters(), Bytes());
  }
}

bool CompactText::Equals(TextView other) const {
  return size() == other.size() && Text(*this) == other;
}

}  // namespace vesko
