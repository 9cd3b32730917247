#include <windows.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/RunTimeError.h"
#include "desktop/common/DateText.h"
#include "desktop/windows/WindowsDesktop.h"

namespace vesko {

namespace {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

const wchar_t* Wide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }
wchar_t* Wide(char16_t* text) { return reinterpret_cast<wchar_t*>(text); }

bool IsAscii(char16_t c) { return c < 128; }
bool IsAsciiByte(char c) { return static_cast<unsigned char>(c) < 128; }

/// Bytes of the character that a UTF-8 lead byte announces behind it; 0 for one that starts none.
int Utf8TrailBytes(uint8_t lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return 1;
  if (lead >= 0xE0 && lead <= 0xEF) return 2;
  return lead >= 0xF0 && lead <= 0xF4 ? 3 : 0;
}

/// Length of the incomplete character at the end of the bytes; 0 when the last one is whole.
size_t IncompleteUtf8(std::string_view bytes) {
  const size_t longest = std::min<size_t>(3, bytes.size());
  for (size_t back = 1; back <= longest; ++back) {
    const auto byte = static_cast<uint8_t>(bytes[bytes.size() - back]);
    if ((byte & 0xC0) == 0x80) continue;
    return Utf8TrailBytes(byte) >= static_cast<int>(back) ? back : 0;
  }
  return 0;
}

/// How many bytes of a double-byte code page stand before the first lead byte without a trail byte:
/// one at the end, or before a line end, which is a broken character's and stays. Only a walk from
/// a known seam can tell.
size_t BeforeLoneLead(std::string_view bytes, UINT code_page) {
  size_t i = 0;
  while (i < bytes.size()) {
    const bool lead = IsDBCSLeadByteEx(code_page, static_cast<BYTE>(bytes[i])) != FALSE;
    if (lead && (i + 1 == bytes.size() || bytes[i + 1] == '\r')) return i;
    i += lead ? 2 : 1;
  }
  return bytes.size();
}

/// 1 where the bytes of a double-byte code page end in a lead byte, else 0.
size_t IncompleteDoubleByte(std::string_view bytes, UINT code_page) {
  size_t whole = 0;
  while (whole < bytes.size()) {
    const size_t lone = whole + BeforeLoneLead(bytes.substr(whole), code_page);
    if (lone + 1 == bytes.size()) return 1;
    whole = lone + 1;
  }
  return 0;
}

Text WithoutLoneSurrogates(TextView text) {
  Text whole(text);
  for (size_t i = 0; i < whole.size(); ++i) {
    if (i + 1 < whole.size() && IS_SURROGATE_PAIR(whole[i], whole[i + 1])) {
      ++i;
    } else if (whole[i] >= 0xD800 && whole[i] <= 0xDFFF) {
      whole[i] = u'?';
    }
  }
  return whole;
}

/// Capital letters that the system leaves alone, as none of the small ones leads back to them.
char16_t FoldSymbol(char16_t c) {
  switch (c) {
    case 0x1E9E:
      return 0x00DF;
    case 0x2126:
      return 0x03C9;
    case 0x212A:
      return u'k';
    case 0x212B:
      return 0x00E5;
    default:
      return c;
  }
}

class WinDecoder final : public TextDecoder {
 public:
  WinDecoder(const Locale& locale, UINT code_page) : locale_(locale), code_page_(code_page) {}

  Text Decode(std::string_view bytes) override {
    if (pending_.empty() && std::all_of(bytes.begin(), bytes.end(), IsAsciiByte)) {
      return Text(bytes.begin(), bytes.end());
    }
    pending_ += bytes;
    const size_t rest = code_page_ == CP_UTF8 ? IncompleteUtf8(pending_)
                                              : IncompleteDoubleByte(pending_, code_page_);
    const size_t whole = pending_.size() - rest;
    Text text = locale_.ToText(std::string_view(pending_).substr(0, whole));
    pending_.erase(0, whole);
    return text;
  }

  void Reset() override { pending_.clear(); }

 private:
  const Locale& locale_;
  UINT code_page_;
  std::string pending_;
};

LCID LocaleIdOf(const std::wstring& name) {
  const LCID named = name.empty() ? 0 : LocaleNameToLCID(name.c_str(), 0);
  return named != 0 ? named : LOCALE_USER_DEFAULT;
}

Text LocaleText(LCID locale, LCTYPE what) {
  wchar_t buffer[128];
  const int size = GetLocaleInfoW(locale, what, buffer, 128);
  return size > 0 ? Text(reinterpret_cast<char16_t*>(buffer), static_cast<size_t>(size) - 1)
                  : Text();
}

class WinLocale final : public Locale {
 public:
  WinLocale(int code_page, const std::wstring& name)
      : user_(LocaleIdOf(name)),
        code_page_(IsValidCodePage(static_cast<UINT>(code_page)) ? static_cast<UINT>(code_page)
                                                                 : GetACP()),
        months_(MonthNames()) {
    CPINFOEXW info = {};
    GetCPInfoExW(code_page_, 0, &info);
    double_byte_ = info.MaxCharSize == 2;
    replacement_ = static_cast<char16_t>(info.UnicodeDefaultChar);
  }

  int CodePage() const override { return static_cast<int>(code_page_); }

  Text ToText(std::string_view bytes) const override {
    if (std::all_of(bytes.begin(), bytes.end(), IsAsciiByte)) {
      return Text(bytes.begin(), bytes.end());
    }
    if (code_page_ == CP_UTF8) return DecodeUtf8(bytes);
    if (!double_byte_) return Decode(bytes, 0);
    Text text;
    while (!bytes.empty()) {
      const size_t whole = BeforeLoneLead(bytes, code_page_);
      text += Decode(bytes.substr(0, whole), 0);
      if (whole < bytes.size()) text += replacement_;
      bytes.remove_prefix(std::min(whole + 1, bytes.size()));
    }
    return text;
  }

  std::string ToBytes(TextView text) const override {
    if (std::all_of(text.begin(), text.end(), IsAscii)) return {text.begin(), text.end()};
    // UTF-8 has every character and takes no replacement, but for halves of one.
    if (code_page_ == CP_UTF8) return Encode(WithoutLoneSurrogates(text), nullptr);
    return Encode(text, "?");
  }

  std::unique_ptr<TextDecoder> NewDecoder() const override {
    return std::make_unique<WinDecoder>(*this, code_page_);
  }

  int TrailBytes(uint8_t lead) const override {
    return code_page_ == CP_UTF8 ? Utf8TrailBytes(lead) : 1;
  }

  Text Character(std::string_view bytes) const override {
    Text character = Decode(bytes, MB_ERR_INVALID_CHARS);
    const bool one = character.size() == 1 ||
                     (character.size() == 2 && IS_SURROGATE_PAIR(character[0], character[1]));
    if (!one) throw RunTimeError(kInvalidProcedureCall);
    return character;
  }

  Text Map(TextMapping mapping, TextView text, int32_t locale_id) const override {
    const LCID locale = LocaleOf(locale_id);
    switch (mapping) {
      case TextMapping::kUpper:
        return MapString(locale, LCMAP_UPPERCASE | LCMAP_LINGUISTIC_CASING, text);
      case TextMapping::kLower:
        return MapString(locale, LCMAP_LOWERCASE | LCMAP_LINGUISTIC_CASING, text);
      case TextMapping::kProper:
        return Proper(locale, text);
      case TextMapping::kWide:
        return MapString(locale, LCMAP_FULLWIDTH, text);
      case TextMapping::kNarrow:
        return MapString(locale, LCMAP_HALFWIDTH, text);
      case TextMapping::kKatakana:
        return MapString(locale, LCMAP_KATAKANA, text);
      case TextMapping::kHiragana:
        return MapString(locale, LCMAP_HIRAGANA, text);
    }
    return Text(text);
  }

  Text Fold(TextView text) const override {
    // Upper first: letters that share a capital (final sigma) become one.
    Text folded = MapString(LOCALE_INVARIANT, LCMAP_LOWERCASE,
                            MapString(LOCALE_INVARIANT, LCMAP_UPPERCASE, text));
    for (char16_t& c : folded) c = FoldSymbol(c);
    return folded;
  }

  int Compare(TextView left, TextView right) const override {
    return CompareStringW(user_, 0, Wide(left.data()), static_cast<int>(left.size()),
                          Wide(right.data()), static_cast<int>(right.size())) -
           CSTR_EQUAL;
  }

  std::optional<DateTime> ParseDate(TextView text) const override {
    return ParseDateText(Fold(text), months_);
  }

  Text ShortDate(const DateTime& date) const override {
    const SYSTEMTIME time = SystemTime(date);
    char16_t buffer[128];
    const int size = GetDateFormatW(user_, DATE_SHORTDATE, &time, nullptr, Wide(buffer), 128);
    return size > 0 ? Text(buffer, static_cast<size_t>(size) - 1) : Text();
  }

  Text ShortTime(const DateTime& date) const override {
    const SYSTEMTIME time = SystemTime(date);
    char16_t buffer[128];
    const int size = GetTimeFormatW(user_, TIME_NOSECONDS, &time, nullptr, Wide(buffer), 128);
    return size > 0 ? Text(buffer, static_cast<size_t>(size) - 1) : Text();
  }

 private:
  static SYSTEMTIME SystemTime(const DateTime& date) {
    SYSTEMTIME time = {};
    time.wYear = static_cast<WORD>(date.year);
    time.wMonth = static_cast<WORD>(date.month);
    time.wDay = static_cast<WORD>(date.day);
    time.wHour = static_cast<WORD>(date.hour);
    time.wMinute = static_cast<WORD>(date.minute);
    time.wSecond = static_cast<WORD>(date.second);
    return time;
  }

  LCID LocaleOf(int32_t locale_id) const {
    if (locale_id == 0) return user_;
    const auto locale = static_cast<LCID>(locale_id);
    return IsValidLocale(locale, LCID_SUPPORTED) ? locale : LOCALE_INVARIANT;
  }

  static Text MapString(LCID locale, DWORD how, TextView text) {
    if (text.empty()) return {};
    const int length = static_cast<int>(text.size());
    const int size = LCMapStringW(locale, how, Wide(text.data()), length, nullptr, 0);
    Text mapped(static_cast<size_t>(size), u'\0');
    if (LCMapStringW(locale, how, Wide(text.data()), length, Wide(mapped.data()), size) == 0) {
      return Text(text);
    }
    return mapped;
  }

  static Text Proper(LCID locale, TextView text) {
    Text proper = MapString(locale, LCMAP_LOWERCASE | LCMAP_LINGUISTIC_CASING, text);
    bool in_word = false;
    for (char16_t& c : proper) {
      const bool letter = IsCharAlphaNumericW(static_cast<WCHAR>(c)) || c == u'\'';
      if (letter && !in_word) {
        const Text upper = MapString(locale, LCMAP_UPPERCASE, TextView(&c, 1));
        if (upper.size() == 1) c = upper[0];
      }
      in_word = letter;
    }
    return proper;
  }

  std::string Encode(TextView text, const char* replacement) const {
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(code_page_, 0, Wide(text.data()), length, nullptr, 0,
                                         replacement, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(code_page_, 0, Wide(text.data()), length, bytes.data(), size, replacement,
                        nullptr);
    return bytes;
  }

  /// A broken character at the end would take along what it has no claim to: none stands there.
  Text DecodeUtf8(std::string_view bytes) const {
    constexpr std::string_view kEnd("\0\0\0", 3);
    Text text = Decode(std::string(bytes).append(kEnd), 0);
    text.erase(text.size() - kEnd.size());
    return text;
  }

  Text Decode(std::string_view bytes, DWORD flags) const {
    const int length = static_cast<int>(bytes.size());
    const int size = MultiByteToWideChar(code_page_, flags, bytes.data(), length, nullptr, 0);
    Text text(static_cast<size_t>(size), u'\0');
    MultiByteToWideChar(code_page_, flags, bytes.data(), length, Wide(text.data()), size);
    return text;
  }

  std::vector<MonthName> MonthNames() const {
    std::vector<MonthName> own;
    for (int month = 0; month < 12; ++month) {
      for (LCTYPE first : {LOCALE_SMONTHNAME1, LOCALE_SABBREVMONTHNAME1}) {
        Text name = Fold(LocaleText(user_, first + static_cast<LCTYPE>(month)));
        if (name.ends_with(u'.')) name.pop_back();
        if (!name.empty()) own.push_back({std::move(name), month + 1});
      }
    }
    return WithEnglishMonths(std::move(own));
  }

  LCID user_;
  UINT code_page_;
  bool double_byte_ = false;
  char16_t replacement_ = u'?';  // for what is no character of the code page
  std::vector<MonthName> months_;
};

}  // namespace

std::unique_ptr<Locale> MakeWinLocale(int code_page, const std::wstring& name) {
  return std::make_unique<WinLocale>(code_page, name);
}

}  // namespace vesko
