#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Text.h"

namespace vesko {

/// Calendar date and time of day without a zone. month 1 to 12, day 1 to 31, hour 0 to 23.
struct DateTime {
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  int second = 0;

  friend bool operator==(const DateTime&, const DateTime&) = default;
};

/// The platform's own string conversions, with the numbers that cEncode passes on.
enum class TextMapping : int32_t {
  kUpper = 1,
  kLower = 2,
  kProper = 3,
  kWide = 4,
  kNarrow = 8,
  kKatakana = 16,
  kHiragana = 32,
};

inline constexpr int kCodePageUtf8 = 65001;

/// Turns bytes that arrive in pieces into text without breaking a character at the seams.
class TextDecoder {
 public:
  virtual ~TextDecoder() = default;

  /// Text of the complete characters so far; an incomplete one at the end waits for the next piece.
  /// Malformed bytes become the code page's replacement character.
  virtual Text Decode(std::string_view bytes) = 0;

  /// Forgets an incomplete character.
  virtual void Reset() = 0;
};

/// Code page and language of the user. Stateless; nothing fails unless it says so.
class Locale {
 public:
  virtual ~Locale() = default;

  /// The system's narrow (ANSI) code page: 949, 932, 936, 950, 1252, … or 65001.
  virtual int CodePage() const = 0;

  /// Bytes in the code page to text. Malformed bytes become the replacement character; never fails.
  virtual Text ToText(std::string_view bytes) const = 0;

  /// Text to bytes in the code page; a character that it lacks becomes "?".
  virtual std::string ToBytes(TextView text) const = 0;

  virtual std::unique_ptr<TextDecoder> NewDecoder() const = 0;

  /// How many bytes follow this lead byte: in a double-byte code page and in a single-byte one
  /// always 1 (the decoders assume double-byte); in UTF-8 the number that the byte announces (0
  /// for a byte that starts no character).
  virtual int TrailBytes(uint8_t lead) const = 0;

  /// One character from its lead and trail bytes. Throws run-time error 5 where the code page has
  /// no such character.
  virtual Text Character(std::string_view bytes) const = 0;

  /// Case, width and kana by the rules of a locale identifier (an LCID); 0 is the user's.
  virtual Text Map(TextMapping mapping, TextView text, int32_t locale_id = 0) const = 0;

  /// Simple one-to-one case folding: same length in, same length out. Equal results mean equal
  /// without regard to case.
  virtual Text Fold(TextView text) const = 0;

  /// Order of two texts as a list shows them: negative, 0 or positive.
  virtual int Compare(TextView left, TextView right) const = 0;

  /// Day, month name (English, or the locale's) or number, year, and an optional time with hours 0
  /// to 23. Nothing for every other text.
  virtual std::optional<DateTime> ParseDate(TextView text) const = 0;

  /// The user's short date and short time formats.
  virtual Text ShortDate(const DateTime& date) const = 0;
  virtual Text ShortTime(const DateTime& date) const = 0;
};

}  // namespace vesko
