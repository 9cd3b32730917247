#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vesko {

/// Text as automation knows it: UTF-16 code units. Every position and length in this program
/// counts code units. Bytes are std::string; only platform/Locale.h converts between the two.
using Text = std::u16string;
using TextView = std::u16string_view;

/// The line end of mail headers, POP3 (RFC 1939) and stored lists.
inline constexpr TextView kCrLf = u"\r\n";

/// Widens 7-bit text. Bytes of 128 and above become U+FFFD.
Text FromAscii(std::string_view ascii);

/// Returns the text without leading and trailing spaces. Only U+0020 counts: tabs and line ends
/// stay. The view lives as long as `text`.
TextView Trim(TextView text);

/// Returns the part before the first NUL, or all of the text. The view lives as long as `text`.
TextView TrimNull(TextView text);

/// Returns the position of the first `needle` at or after `from`, or Text::npos. The comparison is
/// exact. Takes linear time, at the speed of a memory scan where the text is mostly 7-bit.
size_t Find(TextView text, TextView needle, size_t from = 0);
size_t Find(TextView text, char16_t needle, size_t from = 0);

/// Returns the position of the last `needle` that starts at or before `from`, or Text::npos.
size_t FindLast(TextView text, TextView needle, size_t from);

inline bool Contains(TextView text, TextView needle) { return Find(text, needle) != Text::npos; }

/// Returns the pieces between separators, empty ones included. Empty text gives no pieces. The
/// views live as long as `text`. Precondition: `separator` is not empty.
std::vector<TextView> SplitViews(TextView text, TextView separator);
std::vector<Text> Split(TextView text, TextView separator);

/// Returns the pieces with a separator between each two.
Text Join(const std::vector<Text>& pieces, TextView separator);

/// Replaces every occurrence of `what` from left to right; what was put in is not searched again.
/// Precondition: `what` is not empty.
Text ReplaceAll(TextView text, TextView what, TextView with);

/// Returns the number in decimal digits, with a minus sign where it is negative.
Text Decimal(int64_t number);

/// Whether automation would read the text as a number: optional surrounding spaces, an optional
/// sign, decimal digits with an optional fraction, and an optional exponent.
bool IsNumeric(TextView text);

/// Convert text to a number as automation does, rounding half to even. They raise run-time error 13
/// (type mismatch) for text that is not a number and 6 (overflow) outside the range of the type.
int16_t ToInt16(TextView text);
int32_t ToInt32(TextView text);
double ToDouble(TextView text);

}  // namespace vesko
