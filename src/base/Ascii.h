#pragma once

namespace vesko {

/// The letters A to Z and nothing else, whatever the user's language: for names of protocols, files
/// and formats. Any character type; a character that is no such letter comes back as it is.
template <typename Char>
constexpr Char AsciiLower(Char c) {
  return c >= Char{'A'} && c <= Char{'Z'} ? static_cast<Char>(c + ('a' - 'A')) : c;
}

/// Likewise for a to z.
template <typename Char>
constexpr Char AsciiUpper(Char c) {
  return c >= Char{'a'} && c <= Char{'z'} ? static_cast<Char>(c - ('a' - 'A')) : c;
}

/// Whether it is one of them, in either case.
template <typename Char>
constexpr bool IsAsciiLetter(Char c) {
  return AsciiLower(c) >= Char{'a'} && AsciiLower(c) <= Char{'z'};
}

}  // namespace vesko
