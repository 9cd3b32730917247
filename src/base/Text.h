#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vesko {

/// Text as automation knows it: UTF-16 code units. Every position and length in this program
/// counts code units. Bytes are std::string; only platform/Locale.h turns one into the other.
using Text = std::u16string;
using TextView = std::u16string_view;

inline constexpr TextView kCrLf = u"\r\n";

/// Widens 7-bit text; bytes of 128 and more become U+FFFD.
Text FromAscii(std::string_view ascii);

/// Without leading and trailing spaces (U+0020 only; tabs and line ends stay).
TextView Trim(TextView text);

/// The part before the first character of code 0, or all of it.
TextView TrimNull(TextView text);

/// Position of `needle` at or after `from`, or Text::npos. Exact comparison; linear time with the
/// speed of a memory scan for text that is mostly 7-bit.
size_t Find(TextView text, TextView needle, size_t from = 0);
size_t Find(TextView text, char16_t needle, size_t from = 0);

/// Position of the last `needle` that starts at or before `from`, or Text::npos.
size_t FindLast(TextView text, TextView needle, size_t from);

inline bool Contains(TextView text, TextView needle) { return Find(text, needle) != Text::npos; }

/// Pieces between separators, empty ones kept. Empty text gives no piece at all. The views live as
/// long as `text`. Precondition: `separator` is not empty.
std::vector<TextView> SplitViews(TextView text, TextView separator);
std::vector<Text> Split(TextView text, TextView separator);

Text Join(const std::vector<Text>& pieces, TextView separator);

/// Every occurrence of `what` replaced, from left to right, not searched again. Precondition:
/// `what` is not empty.
Text ReplaceAll(TextView text, TextView what, TextView with);

/// Decimal digits with a minus sign where needed, nothing else.
Text Decimal(int64_t number);

/// True when the text is a number as automation reads one: optional surrounding spaces, optional
/// sign, decimal digits with an optional fraction and an optional exponent.
bool IsNumeric(TextView text);

/// Text to a number, rounded half to even, as automation converts. Raise run-time error 13 (type
/// mismatch) for what is no number and 6 (overflow) outside the type's range.
int16_t ToInt16(TextView text);
int32_t ToInt32(TextView text);
double ToDouble(TextView text);

}  // namespace vesko
