#pragma once

#include <cstdint>

#include "base/Text.h"
#include "base/Variant.h"
#include "platform/Locale.h"

namespace vesko {

/// Conversion codes of cEncode::Conv. Those below 256 are the platform's own; TextMapping explains
/// the ones up to 32.
inline constexpr int32_t ConvUpperCase = 1;
inline constexpr int32_t ConvLowerCase = 2;
inline constexpr int32_t ConvProperCase = 3;
inline constexpr int32_t ConvWide = 4;
inline constexpr int32_t ConvNarrow = 8;
inline constexpr int32_t ConvKatakana = 16;
inline constexpr int32_t ConvHiragana = 32;
inline constexpr int32_t ConvUnicode = 64;
inline constexpr int32_t ConvFromUnicode = 128;
inline constexpr int32_t ConvStrip8Bit = 256;
inline constexpr int32_t ConvAnsiRoundTrip = 257;
inline constexpr int32_t ConvQPEncode = 258;
inline constexpr int32_t ConvQPDecode = 259;
inline constexpr int32_t ConvBase64Encode = 260;
inline constexpr int32_t ConvBase64Decode = 261;
inline constexpr int32_t ConvUUEncode = 262;
inline constexpr int32_t ConvUUDecode = 263;
inline constexpr int32_t ConvReverse = 264;
inline constexpr int32_t ConvAnsiBytes = 265;
inline constexpr int32_t ConvUnicodeWords = 266;
inline constexpr int32_t ConvAsciiToEbcdic = 267;
inline constexpr int32_t ConvEbcdicToAscii = 268;

/// Converts text by way of its bytes in the system's code page. It is stateless, and every call
/// takes linear time.
class cEncode {
 public:
  /// The locale must outlive this object.
  explicit cEncode(const Locale& locale) : locale_(locale) {}

  /// The converted data: a ByteArray for ConvAnsiBytes, a WordArray for ConvUnicodeWords, otherwise
  /// text. Data of length 0 give empty text whatever the code; an unknown code gives Empty. Data of
  /// another type are converted to text first, except that ConvUnicode takes the bytes of a
  /// ByteArray as they are.
  ///
  /// A string that holds bytes (the input of ConvUnicode, the result of ConvFromUnicode) holds two
  /// in each character, the first one in the low half. If their number is odd, the high half of the
  /// last character is 0.
  ///
  /// The base64 and uuencode encoders pad with NUL instead of "=" and write no line breaks. They
  /// raise run-time error 6 for more than 24573 bytes, the EBCDIC conversions for more than 32768.
  /// Malformed input raises nothing, with one exception: ConvQPDecode raises error 5 for a
  /// multi-byte character that the code page lacks.
  Variant Conv(const Variant& data, int32_t code, int32_t locale_id) const;

  /// Whether the text needs bytes of 128 or more.
  bool IsBinary(const Variant& data) const;

  /// The text without surrounding spaces and then without double quotes at either end. Spaces
  /// inside the quotes stay.
  static Text TrimQuotes(TextView text);

  /// ConvBase64Decode and ConvQPDecode without a Variant.
  Text DecodeBase64(TextView text) const;
  Text DecodeQuotedPrintable(TextView text) const;

 private:
  Variant Transform(TextView text, int32_t code) const;
  Text UnpackBytes(const Variant& data) const;
  Text EncodeQuotedPrintable(TextView text) const;
  Text DecodeUu(TextView text) const;

  const Locale& locale_;
};

}  // namespace vesko
