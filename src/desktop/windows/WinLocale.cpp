#include "desktop/windows/WinLocale.h"

#include <windows.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/RunTimeError.h"
#include "platform/DateText.h"

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

/// The same in a double-byte code page, where only a walk from a known seam can tell.
size_t IncompleteDoubleByte(std::string_view bytes, UINT code_page) {
  size_t i = 0;
  while (i < bytes.size()) {
    const bool lead = IsDBCSLeadByteEx(code_page, static_cast<BYTE>(bytes[i])) != FALSE;
    // A lead byte before a line end is a broken character, and the line end stays.
    const bool alone = lead && i + 1 < bytes.size() && bytes[i + 1] == '\r';
    if (lead && i + 1 == bytes.size()) return 1;
    i += lead && !alone ? 2 : 1;
  }
  return 0;
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
    const std::string tail = pending_.substr(pending_.size() - rest);
    pending_.resize(pending_.size() - rest);
    Text text = locale_.ToText(pending_);
    pending_ = tail;
    return text;
  }

  void Reset() override { pending_.clear(); }

 private:
  const Locale& locale_;
  UINT code_page_;
  std::string pending_;
};

Text LocaleText(LCTYPE what) {
  wchar_t buffer[128];
  const int size = GetLocaleInfoW(LOCALE_USER_DEFAULT, what, buffer, 128);
  return size > 0 ? Text(reinterpret_cast<char16_t*>(buffer), static_cast<size_t>(size) - 1)
                  : Text();
}

class WinLocale final : public Locale {
 public:
  explicit WinLocale(int code_page)
      : code_page_(IsValidCodePage(static_cast<UINT>(code_page)) ? static_cast<UINT>(code_page)
                                                                 : GetACP()),
        months_(MonthNames()) {}

  int CodePage() const override { return static_cast<int>(code_page_); }

  Text ToText(std::string_view bytes) const override {
    if (std::all_of(bytes.begin(), bytes.end(), IsAsciiByte)) {
      return Text(bytes.begin(), bytes.end());
    }
    return Decode(bytes, 0);
  }

  std::string ToBytes(TextView text) const override {
    if (std::all_of(text.begin(), text.end(), IsAscii)) return {text.begin(), text.end()};
    const int length = static_cast<int>(text.size());
    // UTF-8 has every character and takes no replacement.
    const char* question = code_page_ == CP_UTF8 ? nullptr : "?";
    const int size = WideCharToMultiByte(code_page_, 0, Wide(text.data()), length, nullptr, 0,
                                         question, nullptr);
    std::string bytes(static_cast<size_t>(size), '\0');
    WideCharToMultiByte(code_page_, 0, Wide(text.data()), length, bytes.data(), size, question,
                        nullptr);
    return bytes;
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
    const LCID locale = locale_id == 0 ? LOCALE_USER_DEFAULT : static_cast<LCID>(locale_id);
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
    return MapString(LOCALE_INVARIANT, LCMAP_LOWERCASE,
                     MapString(LOCALE_INVARIANT, LCMAP_UPPERCASE, text));
  }

  int Compare(TextView left, TextView right) const override {
    return CompareStringW(LOCALE_USER_DEFAULT, 0, Wide(left.data()), static_cast<int>(left.size()),
                          Wide(right.data()), static_cast<int>(right.size())) -
           CSTR_EQUAL;
  }

  std::optional<DateTime> ParseDate(TextView text) const override {
    return ParseDateText(Fold(text), months_);
  }

  Text ShortDate(const DateTime& date) const override {
    const SYSTEMTIME time = SystemTime(date);
    char16_t buffer[128];
    const int size =
        GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, Wide(buffer), 128);
    return size > 0 ? Text(buffer, static_cast<size_t>(size) - 1) : Text();
  }

  Text ShortTime(const DateTime& date) const override {
    const SYSTEMTIME time = SystemTime(date);
    char16_t buffer[128];
    const int size =
        GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr, Wide(buffer), 128);
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
        Text name = Fold(LocaleText(first + static_cast<LCTYPE>(month)));
        if (name.ends_with(u'.')) name.pop_back();
        if (!name.empty()) own.push_back({std::move(name), month + 1});
      }
    }
    return WithEnglishMonths(std::move(own));
  }

  UINT code_page_;
  std::vector<MonthName> months_;
};

}  // namespace

std::unique_ptr<Locale> MakeWinLocale(int code_page) {
  return std::make_unique<WinLocale>(code_page);
}

}  // namespace vesko
