#pragma once

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <memory>
#include <vector>

#include "base/Text.h"
#include "platform/Locale.h"

namespace vesko {

/// The short date or short time format of an ICU locale, with plain spaces for no-break ones. A
/// pattern of plain numbers, as nearly all are, is taken apart once and then written without ICU,
/// whose calendars cost most of the time of a long list.
class IcuDateFormat {
 public:
  enum class Kind { kDate, kTime };

  /// Run-time error 5 where ICU was built without its formats.
  IcuDateFormat(const icu::Locale& locale, Kind kind);

  /// Precondition: the date exists in the Gregorian calendar, which counts for all times. Never
  /// fails.
  Text Format(const DateTime& date) const;

 private:
  /// A field by its letter in ICU's patterns and its least number of digits, or a literal, whose
  /// letter is 0.
  struct Piece {
    char16_t field;
    int width;
    Text literal;
  };

  /// False where the pattern holds what only ICU can write.
  bool TakeApart(const icu::UnicodeString& pattern);
  bool WritesLikeIcu() const;
  Text FormatByIcu(const DateTime& date) const;
  Text FormatByPieces(const DateTime& date) const;
  void Append(const Piece& piece, const DateTime& date, Text& text) const;

  std::unique_ptr<icu::DateFormat> format_;

  /// Empty where ICU has to write.
  std::vector<Piece> pieces_;

  /// The words for before and after noon.
  Text half_days_[2];
};

}  // namespace vesko
