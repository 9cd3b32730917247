#include "message/DisplayDate.h"

#include <array>
#include <charconv>
#include <string_view>
#include <vector>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

constexpr double kCutOverYear = 91;

TextView WithoutDayName(TextView date) {
  size_t comma = date.find(u',');
  return comma == TextView::npos ? date : date.substr(comma + 1);
}

bool IsPm(TextView word) {
  return word.size() == 2 && (word[0] == u'P' || word[0] == u'p') &&
         (word[1] == u'M' || word[1] == u'm');
}

Text WithCentury(TextView year) {
  return Text(ToDouble(year) < kCutOverYear ? u"20" : u"19").append(year);
}

// Noon becomes hour 24. That is not a valid time, so such a date is shown as text.
Text AfternoonTime(TextView time) {
  TextView hour = time.substr(0, time.find(u':'));
  std::array<char, 32> digits;
  double later = ToDouble(hour) + 12;
  char* end = std::to_chars(digits.data(), digits.data() + digits.size(), later).ptr;
  return FromAscii({digits.data(), end}).append(time.substr(hour.size()));
}

// Cuts the text at the space after the time of day, which removes the zone and any comment.
TextView WithoutZone(TextView date) {
  size_t colon = date.find(u':');
  return colon == TextView::npos ? date : date.substr(0, date.find(u' ', colon));
}

Text Reshape(TextView date) {
  std::vector<TextView> words = SplitViews(Trim(WithoutDayName(date)), u" ");
  if (words.size() < 3) throw RunTimeError(kSubscriptOutOfRange);
  Text year;
  Text time;
  if (words[2].size() == 2) words[2] = year = WithCentury(words[2]);
  if (words.size() > 4 && IsPm(words[4])) words[3] = time = AfternoonTime(words[3]);
  Text joined;
  joined.reserve(date.size() + 4);
  for (TextView word : words) joined.append(word).append(u" ");
  joined.pop_back();
  return joined;
}

}  // namespace

Text FormatSendDate(const Locale& locale, TextView date) {
  Text reshaped = Reshape(date);
  TextView text = WithoutZone(reshaped);
  std::optional<DateTime> parsed = locale.ParseDate(text);
  if (!parsed) return Text(text).append(u" ").append(text);
  return locale.ShortDate(*parsed).append(u" ").append(locale.ShortTime(*parsed));
}

}  // namespace vesko
