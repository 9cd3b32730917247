#include "desktop/linux/locale/IcuDateFormat.h"

#include <unicode/dtfmtsym.h>
#include <unicode/gregocal.h>

#include <algorithm>
#include <cfloat>

#include "base/Ascii.h"
#include "base/RunTimeError.h"

namespace vesko {
namespace {

Text PlainSpaces(const icu::UnicodeString& from) {
  Text text(from.getBuffer(), from.length());
  std::replace_if(
      text.begin(), text.end(), [](char16_t c) { return c == u'\u202F' || c == u'\u00A0'; }, u' ');
  return text;
}

void AppendNumber(int number, int width, Text& text) {
  char16_t digits[12];
  int at = 12;
  for (; number > 0 || width > 0 || at == 12; number /= 10, --width) {
    digits[--at] = static_cast<char16_t>(u'0' + number % 10);
  }
  text.append(digits + at, 12 - at);
}

}  // namespace

IcuDateFormat::IcuDateFormat(const icu::Locale& locale, Kind kind)
    : format_(kind == Kind::kDate
                  ? icu::DateFormat::createDateInstance(icu::DateFormat::kShort, locale)
                  : icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale)) {
  if (!format_) throw RunTimeError(kInvalidProcedureCall);
  format_->adoptTimeZone(icu::TimeZone::getGMT()->clone());
  auto* simple = dynamic_cast<icu::SimpleDateFormat*>(format_.get());
  if (simple == nullptr) return;
  int32_t count = 0;
  const icu::UnicodeString* names = simple->getDateFormatSymbols()->getAmPmStrings(count);
  for (int32_t i = 0; i < std::min(count, 2); ++i) half_days_[i] = PlainSpaces(names[i]);
  icu::UnicodeString pattern;
  if (!TakeApart(simple->toPattern(pattern)) || !WritesLikeIcu()) pieces_.clear();
}

bool IcuDateFormat::TakeApart(const icu::UnicodeString& pattern) {
  constexpr TextView kFields = u"yMdHhma";
  Text text = PlainSpaces(pattern);
  for (size_t i = 0; i < text.size();) {
    char16_t c = text[i];
    const bool is_letter = IsAsciiLetter(c);
    if (c == u'\'' || (is_letter && kFields.find(c) == TextView::npos)) return false;
    size_t end = is_letter ? std::min(text.find_first_not_of(c, i), text.size()) : i + 1;
    pieces_.push_back({is_letter ? c : u'\0', static_cast<int>(end - i), text.substr(i, end - i)});
    i = end;
  }
  return true;
}

// Other calendars, digits and month names show here, whatever makes the locale use them.
bool IcuDateFormat::WritesLikeIcu() const {
  constexpr DateTime kSamples[] = {
      {2001, 1, 2, 0, 5, 6}, {1999, 12, 31, 12, 0, 0}, {2010, 10, 9, 23, 59, 59}};
  return std::all_of(std::begin(kSamples), std::end(kSamples), [this](const DateTime& sample) {
    return FormatByPieces(sample) == FormatByIcu(sample);
  });
}

Text IcuDateFormat::Format(const DateTime& date) const {
  return pieces_.empty() ? FormatByIcu(date) : FormatByPieces(date);
}

Text IcuDateFormat::FormatByIcu(const DateTime& date) const {
  UErrorCode status = U_ZERO_ERROR;
  icu::GregorianCalendar calendar(*icu::TimeZone::getGMT(), status);
  calendar.setGregorianChange(-DBL_MAX, status);
  calendar.clear();
  calendar.set(date.year, date.month - 1, date.day, date.hour, date.minute, date.second);
  icu::UnicodeString text;
  format_->format(calendar.getTime(status), text);
  return PlainSpaces(text);
}

Text IcuDateFormat::FormatByPieces(const DateTime& date) const {
  Text text;
  for (const Piece& piece : pieces_) Append(piece, date, text);
  return text;
}

void IcuDateFormat::Append(const Piece& piece, const DateTime& date, Text& text) const {
  switch (piece.field) {
    case u'y':
      return AppendNumber(piece.width == 2 ? date.year % 100 : date.year, piece.width, text);
    case u'M':
      return AppendNumber(date.month, piece.width, text);
    case u'd':
      return AppendNumber(date.day, piece.width, text);
    case u'H':
      return AppendNumber(date.hour, piece.width, text);
    case u'h':
      return AppendNumber((date.hour + 11) % 12 + 1, piece.width, text);
    case u'm':
      return AppendNumber(date.minute, piece.width, text);
    case u'a':
      text += half_days_[date.hour / 12];
      return;
    default:
      text += piece.literal;
  }
}

}  // namespace vesko
