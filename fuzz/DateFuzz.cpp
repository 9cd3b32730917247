// Dates of messages.

#include "Fuzz.h"
#include "message/DisplayDate.h"
#include "support/ErrorOf.h"

namespace vesko::fuzz {
namespace {

int DaysIn(int month, int year) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return kDays[month - 1] + (month == 2 && leap ? 1 : 0);
}

bool IsPossible(const DateTime& date) {
  const bool day = date.month >= 1 && date.month <= 12 && date.year >= 100 && date.year <= 9999 &&
                   date.day >= 1 && date.day <= DaysIn(date.month, date.year);
  return day && date.hour >= 0 && date.hour < 24 && date.minute >= 0 && date.minute < 60 &&
         date.second >= 0 && date.second < 60;
}

Text TwoDigits(int number) { return (number < 10 ? u"0" : u"") + Decimal(number); }

Text Written(const DateTime& date) {
  constexpr TextView kMonths[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                  u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
  return Decimal(date.day) + u" " + Text(kMonths[date.month - 1]) + u" " + Decimal(date.year) +
         u" " + Decimal(date.hour) + u":" + TwoDigits(date.minute) + u":" + TwoDigits(date.second);
}

void Run(Input input) {
  const Locale& locale = LocaleAt(input.Choose(kLocales));
  const bool inflate = input.Choose(64) == 63;
  const Text text = locale.ToText(inflate ? Inflate(input.Rest()) : input.Rest());

  Text shown;
  Expect(ErrorOf([&] { shown = FormatSendDate(locale, text); }),
         {kSubscriptOutOfRange, kTypeMismatch}, "only a malformed date is refused");
  Expect(shown.size() <= 2 * text.size() + 64, "a date is not much larger than its text");

  const std::optional<DateTime> date = locale.ParseDate(text);
  if (!date) return;
  Expect(IsPossible(*date), "a parsed date is in the calendar");
  Expect(locale.ParseDate(Written(*date)) == date, "a date that is written is read again");
  Expect(IsShowable(locale.ShortDate(*date) + locale.ShortTime(*date), false) ||
             locale.CodePage() != kCodePageUtf8,
         "a formatted date is plain text");
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
