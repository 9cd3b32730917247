#include "message/cEncode.h"

#include <algorithm>
#include <array>
#include <limits>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

constexpr size_t kMostGroups = std::numeric_limits<int16_t>::max() / 4;
constexpr size_t kMostTableBytes = size_t{std::numeric_limits<int16_t>::max()} + 1;

constexpr std::string_view kBase64 =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

using ByteTable = std::array<uint8_t, 256>;

constexpr std::array<uint8_t, 128> MakeBase64Values() {
  std::array<uint8_t, 128> values{};
  for (size_t i = 0; i < kBase64.size(); ++i) {
    values[static_cast<uint8_t>(kBase64[i])] = static_cast<uint8_t>(i);
  }
  return values;
}
constexpr std::array<uint8_t, 128> kBase64Values = MakeBase64Values();

constexpr ByteTable kAsciiToEbcdic = {
    0x00, 0x01, 0x02, 0x03, 0x37, 0x2D, 0x2E, 0x2F, 0x16, 0x05, 0x25, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F,
    0x10, 0x11, 0x12, 0x13, 0x3C, 0x3D, 0x32, 0x26, 0x18, 0x19, 0x3F, 0x27, 0x1C, 0x1D, 0x1E, 0x1F,
    0x40, 0x4F, 0x7F, 0x7B, 0x5B, 0x6C, 0x50, 0x7D, 0x4D, 0x5D, 0x5C, 0x4E, 0x6B, 0x60, 0x4B, 0x61,
    0xF0, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0x7A, 0x5E, 0x4C, 0x7E, 0x6E, 0x6F,
    0x7C, 0xC1, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xD1, 0xD2, 0xD3, 0xD4, 0xD5, 0xD6,
    0xD7, 0xD8, 0xD9, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8, 0xE9, 0x4A, 0xE0, 0x5A, 0x5F, 0x6D,
    0x79, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x91, 0x92, 0x93, 0x94, 0x95, 0x96,
    0x97, 0x98, 0x99, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xC0, 0x6A, 0xD0, 0xA1, 0x07,
    0x20, 0x21, 0x22, 0x23, 0x24, 0x15, 0x06, 0x17, 0x28, 0x29, 0x2A, 0x2B, 0x2C, 0x09, 0x0A, 0x1B,
    0x30, 0x31, 0x1A, 0x33, 0x34, 0x35, 0x36, 0x08, 0x38, 0x39, 0x3A, 0x3B, 0x04, 0x14, 0x3E, 0xE1,
    0x41, 0x42, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57,
    0x58, 0x59, 0x62, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x70, 0x71, 0x72, 0x73, 0x74, 0x75,
    0x76, 0x77, 0x78, 0x80, 0x8A, 0x8B, 0x8C, 0x8D, 0x8E, 0x8F, 0x90, 0x9A, 0x9B, 0x9C, 0x9D, 0x9E,
    0x9F, 0xA0, 0xAA, 0xAB, 0xAC, 0xAD, 0xAE, 0xAF, 0xB0, 0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7,
    0xB8, 0xB9, 0xBA, 0xBB, 0xBC, 0xBD, 0xBE, 0xBF, 0xCA, 0xCB, 0xCC, 0xCD, 0xCE, 0xCF, 0xDA, 0xDB,
    0xDC, 0xDD, 0xDE, 0xDF, 0xEA, 0xEB, 0xEC, 0xED, 0xEE, 0xEF, 0xFA, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF};

constexpr ByteTable Invert(const ByteTable& table) {
  ByteTable inverse{};
  for (size_t i = 0; i < table.size(); ++i) inverse[table[i]] = static_cast<uint8_t>(i);
  return inverse;
}
constexpr ByteTable kEbcdicToAscii = Invert(kAsciiToEbcdic);
static_assert(Invert(kEbcdicToAscii) == kAsciiToEbcdic, "a byte stands twice in the table");

std::string_view AsBytes(const ByteArray& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

uint8_t Byte(std::string_view bytes, size_t at) { return static_cast<uint8_t>(bytes[at]); }

// Packs two bytes into each character, which is how an automation string holds bytes.
Text PackBytes(std::string_view bytes) {
  Text packed((bytes.size() + 1) / 2, u'\0');
  for (size_t i = 0; i < bytes.size(); ++i) {
    packed[i / 2] |= static_cast<char16_t>(Byte(bytes, i) << (i % 2 * 8));
  }
  return packed;
}

// Pads the bytes to groups of three and writes each group as four 6-bit values.
template <typename Digit>
std::string EncodeGroups(std::string bytes, Digit digit) {
  size_t groups = (bytes.size() + 2) / 3;
  if (groups > kMostGroups) throw RunTimeError(kOverflow);
  bytes.resize(groups * 3, '\0');
  std::string encoded;
  encoded.reserve(groups * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint8_t b0 = Byte(bytes, i), b1 = Byte(bytes, i + 1), b2 = Byte(bytes, i + 2);
    encoded += digit(b0 >> 2);
    encoded += digit((b0 & 3) << 4 | b1 >> 4);
    encoded += digit((b1 & 15) << 2 | b2 >> 6);
    encoded += digit(b2 & 63);
  }
  return encoded;
}

char Base64Digit(int value) { return kBase64[value]; }
char UuDigit(int value) { return static_cast<char>(value + 32); }

// Pads the text to a multiple of three characters; EncodeGroups then pads the bytes.
Text PadToGroups(TextView text) {
  Text padded(text);
  padded.resize((text.size() + 2) / 3 * 3, u'\0');
  return padded;
}

Text WithoutLineEnds(TextView text) { return ReplaceAll(Trim(text), kCrLf, {}); }

// Makes the length a multiple of four: surplus padding is removed, missing padding is added.
void NormalisePad(Text& text) {
  constexpr TextView kPads[] = {u"", u"=", u"==", u"==="};
  size_t rest = text.size() % 4;
  if (rest == 0) return;
  if (text.ends_with(kPads[rest])) {
    text.resize(text.size() - rest);
  } else {
    text += kPads[4 - rest];
  }
}

// The four values of a group. For a byte beyond the table, the value from the same position of the
// previous group stays.
class Base64Group {
 public:
  void Read(std::string_view bytes, size_t at) {
    for (size_t i = 0; i < 4; ++i) {
      uint8_t byte = Byte(bytes, at + i);
      if (byte < kBase64Values.size()) values_[i] = kBase64Values[byte];
    }
  }

  void Write(std::string& to, size_t count) const {
    const char bytes[] = {static_cast<char>(values_[0] << 2 | (values_[1] & 48) >> 4),
                          static_cast<char>((values_[1] & 15) << 4 | (values_[2] & 60) >> 2),
                          static_cast<char>((values_[2] & 3) << 6 | values_[3])};
    to.append(bytes, count);
  }

 private:
  std::array<uint8_t, 4> values_{};
};

// The number of bytes in the last group if it is padded, otherwise 0.
size_t TailBytes(std::string_view bytes) {
  if (bytes.size() < 4 || bytes.back() != '=') return 0;
  return bytes[bytes.size() - 2] == '=' ? 1 : 2;
}

int HexDigit(char16_t c) {
  if (c >= u'0' && c <= u'9') return c - u'0';
  if (c >= u'A' && c <= u'F') return c - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c - u'a' + 10;
  return -1;
}

// The value of up to two hexadecimal digits at a position; 0 if there is none.
uint8_t HexByte(TextView text, size_t at) {
  int value = 0;
  for (size_t i = at; i < at + 2 && i < text.size() && HexDigit(text[i]) >= 0; ++i) {
    value = value * 16 + HexDigit(text[i]);
  }
  return static_cast<uint8_t>(value);
}

constexpr uint8_t kFirstLeadByte = 0x81;

// Appends the character whose first byte is at `at`, after an "=". Returns how many characters of
// the text it consumed. Each trail byte is assumed to have an "=" of its own, which is skipped
// without a look.
size_t AppendEscaped(const Locale& locale, TextView text, size_t at, Text& decoded) {
  std::string bytes(1, static_cast<char>(HexByte(text, at)));
  uint8_t lead = Byte(bytes, 0);
  if (lead < kFirstLeadByte) {
    decoded += lead < 128 ? Text(1, lead) : locale.ToText(bytes);
    return 2;
  }
  size_t taken = 2;
  for (int trail = locale.TrailBytes(lead); trail > 0; --trail, taken += 3) {
    bytes += static_cast<char>(HexByte(text, at + taken + 1));
  }
  decoded += locale.Character(bytes);
  return taken;
}

uint8_t UuByte(std::string_view bytes, size_t at) {
  return at < bytes.size() && bytes[at] != '`' ? Byte(bytes, at) : uint8_t{' '};
}

std::string MapBytes(std::string bytes, const ByteTable& table) {
  if (bytes.size() > kMostTableBytes) throw RunTimeError(kOverflow);
  for (char& c : bytes) c = static_cast<char>(table[static_cast<uint8_t>(c)]);
  return bytes;
}

std::string StripTopBits(std::string bytes) {
  for (char& c : bytes) c = static_cast<char>(c & 127);
  return bytes;
}

bool HasNoLength(const Variant& data) {
  if (const auto* text = std::get_if<Text>(&data)) return text->empty();
  if (const auto* bytes = std::get_if<ByteArray>(&data)) return bytes->empty();
  return IsEmpty(data);
}

bool IsPlatformMapping(int32_t code) {
  return code == ConvUpperCase || code == ConvLowerCase || code == ConvProperCase ||
         code == ConvWide || code == ConvNarrow || code == ConvKatakana || code == ConvHiragana;
}

}  // namespace

Variant cEncode::Conv(const Variant& data, int32_t code, int32_t locale_id) const {
  if (HasNoLength(data)) return Text();
  if (code == ConvUnicode) return UnpackBytes(data);
  const auto* text = std::get_if<Text>(&data);
  if (text == nullptr) return Conv(ToText(data), code, locale_id);
  if (!IsPlatformMapping(code)) return Transform(*text, code);
  return locale_.Map(static_cast<TextMapping>(code), *text, locale_id);
}

Variant cEncode::Transform(TextView text, int32_t code) const {
  switch (code) {
    case ConvFromUnicode:
      return PackBytes(locale_.ToBytes(text));
    case ConvStrip8Bit:
      return locale_.ToText(StripTopBits(locale_.ToBytes(text)));
    case ConvAnsiRoundTrip:
      return locale_.ToText(locale_.ToBytes(text));
    case ConvQPEncode:
      return EncodeQuotedPrintable(text);
    case ConvQPDecode:
      return DecodeQuotedPrintable(text);
    case ConvBase64Encode:
      return locale_.ToText(EncodeGroups(locale_.ToBytes(PadToGroups(text)), Base64Digit));
    case ConvBase64Decode:
      return DecodeBase64(text);
    case ConvUUEncode:
      return locale_.ToText(EncodeGroups(locale_.ToBytes(PadToGroups(text)), UuDigit));
    case ConvUUDecode:
      return DecodeUu(text);
    case ConvReverse:
      return Text(text.rbegin(), text.rend());
    case ConvAnsiBytes: {
      std::string bytes = locale_.ToBytes(text);
      return ByteArray(bytes.begin(), bytes.end());
    }
    case ConvUnicodeWords:
      return WordArray(text.begin(), text.end());
    case ConvAsciiToEbcdic:
      return locale_.ToText(MapBytes(locale_.ToBytes(text), kAsciiToEbcdic));
    case ConvEbcdicToAscii:
      return locale_.ToText(MapBytes(locale_.ToBytes(text), kEbcdicToAscii));
    default:
      return {};
  }
}

Text cEncode::UnpackBytes(const Variant& data) const {
  if (const auto* bytes = std::get_if<ByteArray>(&data)) return locale_.ToText(AsBytes(*bytes));
  std::string bytes;
  for (char16_t c : ToText(data)) {
    bytes += static_cast<char>(c & 255);
    bytes += static_cast<char>(c >> 8);
  }
  if (bytes.back() == '\0') bytes.pop_back();
  return locale_.ToText(bytes);
}

bool cEncode::IsBinary(const Variant& data) const {
  if (HasNoLength(data)) return false;
  std::string bytes = locale_.ToBytes(ToText(data));
  return std::any_of(bytes.begin(), bytes.end(), [](char c) { return (c & 128) != 0; });
}

Text cEncode::TrimQuotes(TextView text) {
  text = Trim(text);
  while (text.starts_with(u'"')) text.remove_prefix(1);
  while (text.ends_with(u'"')) text.remove_suffix(1);
  return Text(text);
}

Text cEncode::DecodeBase64(TextView text) const {
  Text characters = WithoutLineEnds(text);
  NormalisePad(characters);
  std::string bytes = locale_.ToBytes(characters);
  size_t tail = TailBytes(bytes);
  size_t full = tail == 0 ? bytes.size() : bytes.size() - 4;
  std::string decoded;
  decoded.reserve(bytes.size() / 4 * 3);
  Base64Group group;
  for (size_t i = 0; i + 4 <= full; i += 4) {
    group.Read(bytes, i);
    group.Write(decoded, 3);
  }
  if (tail > 0) {
    group.Read(bytes, full);
    group.Write(decoded, tail);
  }
  return locale_.ToText(decoded);
}

Text cEncode::EncodeQuotedPrintable(TextView text) const {
  constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
  std::string bytes = locale_.ToBytes(text);
  Text encoded;
  encoded.reserve(bytes.size() * 3);
  for (char c : bytes) {
    auto byte = static_cast<uint8_t>(c);
    encoded += {u'=', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return encoded;
}

Text cEncode::DecodeQuotedPrintable(TextView text) const {
  Text decoded;
  decoded.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == u'=') {
      i += AppendEscaped(locale_, text, i + 1, decoded);
    } else {
      decoded += text[i] == u'_' ? u' ' : text[i];
    }
  }
  return decoded;
}

Text cEncode::DecodeUu(TextView text) const {
  std::string bytes = locale_.ToBytes(WithoutLineEnds(text));
  std::string decoded;
  decoded.reserve((bytes.size() + 3) / 4 * 3);
  for (size_t i = 0; i < bytes.size(); i += 4) {
    int v[4];
    for (size_t k = 0; k < 4; ++k) v[k] = UuByte(bytes, i + k) - 32;
    decoded += static_cast<char>(v[0] * 4 + v[1] / 16);
    decoded += static_cast<char>((v[1] & 15) * 16 + v[2] / 4);
    decoded += static_cast<char>((v[2] & 3) * 64 + v[3]);
  }
  return locale_.ToText(decoded);
}

}  // namespace vesko
