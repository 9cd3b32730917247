#include "desktop/common/DateText.h"

#include <algorithm>
#include <utility>

namespace vesko {
namespace {

constexpr const char* kEnglish[] = {"january",   "february", "march",    "april",
                                    "may",       "june",     "july",     "august",
                                    "september", "october",  "november", "december"};

int DaysIn(int year, int month) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return month == 2 && leap ? 29 : kDays[month - 1];
}

// Takes pieces off the front of a text. Each call says whether the piece was there.
class Reader {
 public:
  explicit Reader(TextView text) : rest_(Trim(text)) {}

  bool AtEnd() const { return rest_.empty(); }

  bool Number(size_t most_digits, int low, int high, int& number) {
    size_t digits = 0;
    number = 0;
    for (; digits < rest_.size() && rest_[digits] >= u'0' && rest_[digits] <= u'9'; ++digits) {
      if (digits == most_digits) return false;
      number = number * 10 + (rest_[digits] - u'0');
    }
    rest_.remove_prefix(digits);
    return digits > 0 && number >= low && number <= high;
  }

  bool Literal(char16_t c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }

  bool Spaces() {
    size_t spaces = std::min(rest_.find_first_not_of(u' '), rest_.size());
    rest_.remove_prefix(spaces);
    return spaces > 0;
  }

  bool Separator() { return Literal(u'-') || Spaces(); }

  bool Month(const std::vector<MonthName>& names, int& month) {
    for (const MonthName& name : names) {
      if (rest_.starts_with(name.folded) && EndsName(name.folded.size())) {
        rest_.remove_prefix(name.folded.size());
        Literal(u'.');
        month = name.month;
        return true;
      }
    }
    return Number(2, 1, 12, month);
  }

 private:
  bool EndsName(size_t at) const {
    return at < rest_.size() && (rest_[at] == u' ' || rest_[at] == u'-' || rest_[at] == u'.');
  }

  TextView rest_;
};

bool ReadTime(Reader& reader, DateTime& date) {
  if (!reader.Number(2, 0, 23, date.hour) || !reader.Literal(u':')) return false;
  if (!reader.Number(2, 0, 59, date.minute)) return false;
  return !reader.Literal(u':') || reader.Number(2, 0, 59, date.second);
}

}  // namespace

std::vector<MonthName> WithEnglishMonths(std::vector<MonthName> own) {
  std::vector<MonthName> names;
  for (int month = 1; month <= 12; ++month) {
    Text name = FromAscii(kEnglish[month - 1]);
    names.push_back({name, month});
    names.push_back({name.substr(0, 3), month});
  }
  for (MonthName& name : own) {
    if (!name.folded.empty()) names.push_back(std::move(name));
  }
  // Longest first: "month 10" must not be read as "month 1".
  std::stable_sort(names.begin(), names.end(), [](const MonthName& left, const MonthName& right) {
    return left.folded.size() > right.folded.size();
  });
  return names;
}

std::optional<DateTime> ParseDateText(TextView folded, const std::vector<MonthName>& names) {
  Reader reader(folded);
  DateTime date;
  if (!reader.Number(2, 1, 31, date.day) || !reader.Separator()) return std::nullopt;
  if (!reader.Month(names, date.month) || !reader.Separator()) return std::nullopt;
  if (!reader.Number(4, 100, 9999, date.year)) return std::nullopt;
  if (date.day > DaysIn(date.year, date.month)) return std::nullopt;
  if (reader.AtEnd()) return date;
  if (!reader.Spaces() || !ReadTime(reader, date) || !reader.AtEnd()) return std::nullopt;
  return date;
}

}  // namespace vesko
