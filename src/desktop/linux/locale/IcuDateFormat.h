#pragma once

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <memory>
#include <vector>

#include "base/Text.h"
#include "platform/Locale.h"

namespace vesko {

/// The short date or short time format of an ICU locale, no-break spaces made plain. Patterns of
/// plain numbers, which nearly all are, are taken apart once and written without ICU.
class IcuDateFormat {
 public:
  enum class Kind { kDate, kTime };

  IcuDateFormat(const icu::Locale& locale, Kind kind);

  Text Format(const DateTime& date) const;

 private:
  struct Piece {
    char16_t field;  // 0 for a literal
    int width;
    Text literal;
  };

  bool TakeApart(const icu::UnicodeString& pattern);
  bool WritesLikeIcu() const;
  Text FormatByIcu(const DateTime& date) const;
  Text FormatByPieces(const DateTime& date) const;
  void Append(const Piece& piece, const DateTime& date, Text& text) const;

  std::unique_ptr<icu::DateFormat> format_;
  std::vector<Piece> pieces_;  // empty where ICU must write
  Text half_days_[2];          // before and after noon
};

}  // namespace vesko
