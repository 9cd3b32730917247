#pragma once

#include <optional>
#include <vector>

#include "base/Text.h"
#include "platform/Locale.h"

namespace vesko {

/// A name that a date text may call a month, case-folded and without a dot at its end.
struct MonthName {
  Text folded;
  int month = 0;
};

/// The English names, long and short, together with a locale's own, in the order in which
/// ParseDateText must try them. Every port of Locale reads dates by one grammar through these two.
std::vector<MonthName> WithEnglishMonths(std::vector<MonthName> own);

/// Day, month by name or number, year from 100 to 9999, and an optional time "h:mm" or "h:mm:ss"
/// with hours 0 to 23; spaces or one hyphen between day, month and year, spaces around them.
/// `folded` is case-folded text. Nothing for every other text and for days that a month lacks.
std::optional<DateTime> ParseDateText(TextView folded, const std::vector<MonthName>& names);

}  // namespace vesko
