#include <langinfo.h>
#include <locale.h>
#include <unicode/coll.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/translit.h>
#include <unicode/uchar.h>
#include <unicode/uloc.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>
#include <vector>

#include "base/Ascii.h"
#include "desktop/common/DateText.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/locale/IcuCodePage.h"
#include "desktop/linux/locale/IcuDateFormat.h"

namespace vesko {
namespace {

constexpr struct {
  std::string_view code_set;
  int code_page;
} kCodeSets[] = {
    {"EUCKR", 949},      {"CP949", 949},      {"UHC", 949},       {"KSC56011987", 949},
    {"EUCJP", 932},      {"SHIFTJIS", 932},   {"SJIS", 932},      {"CP932", 932},
    {"WINDOWS31J", 932}, {"EUCCN", 936},      {"GB2312", 936},    {"GBK", 936},
    {"CP936", 936},      {"GB18030", 936},    {"BIG5", 950},      {"BIG5HKSCS", 950},
    {"CP950", 950},      {"TIS620", 874},     {"ISO88592", 1250}, {"CP1250", 1250},
    {"ISO88595", 1251},  {"KOI8R", 1251},     {"KOI8U", 1251},    {"CP1251", 1251},
    {"ISO88591", 1252},  {"ISO885915", 1252}, {"CP1252", 1252},   {"ISO88597", 1253},
    {"CP1253", 1253},    {"ISO88599", 1254},  {"CP1254", 1254},   {"ISO88598", 1255},
    {"CP1255", 1255},    {"ISO88596", 1256},  {"CP1256", 1256},   {"ISO885913", 1257},
    {"CP1257", 1257},    {"TCVN57121", 1258}, {"CP1258", 1258},
};

std::string Setting(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

// As the C library ranks them; asked directly because a library must not call setlocale.
std::string UserSetting(const char* category) {
  for (const char* name : {"LC_ALL", category, "LANG"}) {
    std::string value = Setting(name);
    if (!value.empty()) return value;
  }
  return "C";
}

icu::Locale UserLocale() {
  std::string name = UserSetting("LC_TIME");
  return icu::Locale::createCanonical(name == "C" || name.starts_with("C.") ? "en_US_POSIX"
                                                                            : name.c_str());
}

icu::UnicodeString Alias(TextView text) {
  return icu::UnicodeString(false, text.data(), static_cast<int32_t>(text.size()));
}

Text Copy(const icu::UnicodeString& text) { return Text(text.getBuffer(), text.length()); }

Text FoldSimply(TextView text) {
  Text folded(text);
  for (size_t i = 0; i < folded.size();) {
    if (folded[i] < 128) {
      folded[i] = AsciiLower(folded[i]);
      ++i;
      continue;
    }
    size_t start = i;
    UChar32 c;
    U16_NEXT(folded.data(), i, folded.size(), c);
    UChar32 simple = u_foldCase(c, U_FOLD_CASE_DEFAULT);
    if (U16_LENGTH(simple) != U16_LENGTH(c)) continue;
    U16_APPEND_UNSAFE(folded.data(), start, simple);
  }
  return folded;
}

icu::UnicodeString Transliterate(const char* rules, TextView text) {
  icu::UnicodeString mapped(text.data(), static_cast<int32_t>(text.size()));
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<icu::Transliterator> transliterator(
      icu::Transliterator::createInstance(rules, UTRANS_FORWARD, status));
  if (U_SUCCESS(status)) transliterator->transliterate(mapped);
  return mapped;
}

// The two kana blocks run in parallel. ICU's transliterators also rewrite long vowels, which would
// not come back.
Text ShiftKana(TextView text, char16_t first, char16_t last, char16_t marks, int shift) {
  Text shifted(text);
  for (char16_t& c : shifted) {
    bool is_kana = (c >= first && c <= last) || c == marks || c == marks + 1;
    if (is_kana) c = static_cast<char16_t>(c + shift);
  }
  return shifted;
}

MonthName MakeMonthName(const icu::UnicodeString& name, int month) {
  Text folded = FoldSimply(Copy(name));
  if (folded.ends_with(u'.')) folded.pop_back();
  return {std::move(folded), month};
}

std::vector<MonthName> MonthNames(const icu::Locale& locale) {
  using Symbols = icu::DateFormatSymbols;
  std::vector<MonthName> own;
  UErrorCode status = U_ZERO_ERROR;
  Symbols symbols(locale, "gregorian", status);
  if (U_FAILURE(status)) return WithEnglishMonths({});
  for (auto context : {Symbols::FORMAT, Symbols::STANDALONE}) {
    for (auto width : {Symbols::WIDE, Symbols::ABBREVIATED}) {
      int32_t count = 0;
      const icu::UnicodeString* names = symbols.getMonths(count, context, width);
      for (int32_t i = 0; i < std::min(count, 12); ++i) {
        own.push_back(MakeMonthName(names[i], i + 1));
      }
    }
  }
  return WithEnglishMonths(std::move(own));
}

class IcuLocale : public Locale {
 public:
  IcuLocale(int code_page, const icu::Locale& locale)
      : code_page_(code_page),
        locale_(locale),
        short_date_(locale, IcuDateFormat::Kind::kDate),
        short_time_(locale, IcuDateFormat::Kind::kTime),
        months_(MonthNames(locale)) {
    UErrorCode status = U_ZERO_ERROR;
    collator_.reset(icu::Collator::createInstance(locale, status));
    if (U_FAILURE(status)) collator_.reset();
  }

  int CodePage() const override { return code_page_.Number(); }
  Text ToText(std::string_view bytes) const override { return code_page_.ToText(bytes); }
  std::string ToBytes(TextView text) const override { return code_page_.ToBytes(text); }
  std::unique_ptr<TextDecoder> NewDecoder() const override { return code_page_.NewDecoder(); }
  int TrailBytes(uint8_t lead) const override { return code_page_.TrailBytes(lead); }
  Text Character(std::string_view bytes) const override { return code_page_.Character(bytes); }

  Text Map(TextMapping mapping, TextView text, int32_t locale_id) const override {
    icu::Locale locale = LocaleOf(locale_id);
    switch (mapping) {
      case TextMapping::kUpper:
        return Copy(icu::UnicodeString(Alias(text)).toUpper(locale));
      case TextMapping::kLower:
        return Copy(icu::UnicodeString(Alias(text)).toLower(locale));
      case TextMapping::kProper:
        return Copy(icu::UnicodeString(Alias(text)).toTitle(nullptr, locale));
      case TextMapping::kWide:
        return Copy(Transliterate("Halfwidth-Fullwidth", text));
      case TextMapping::kNarrow:
        return Copy(Transliterate("Fullwidth-Halfwidth", text));
      case TextMapping::kKatakana:
        return ShiftKana(text, u'\u3041', u'\u3096', u'\u309D', 0x60);
      case TextMapping::kHiragana:
        return ShiftKana(text, u'\u30A1', u'\u30F6', u'\u30FD', -0x60);
    }
    return Text(text);
  }

  Text Fold(TextView text) const override { return FoldSimply(text); }

  int Compare(TextView left, TextView right) const override {
    if (!collator_) return left.compare(right);
    UErrorCode status = U_ZERO_ERROR;
    return collator_->compare(left.data(), static_cast<int32_t>(left.size()), right.data(),
                              static_cast<int32_t>(right.size()), status);
  }

  std::optional<DateTime> ParseDate(TextView text) const override {
    return ParseDateText(Fold(text), months_);
  }

  Text ShortDate(const DateTime& date) const override { return short_date_.Format(date); }
  Text ShortTime(const DateTime& date) const override { return short_time_.Format(date); }

 private:
  icu::Locale LocaleOf(int32_t locale_id) const {
    if (locale_id == 0) return locale_;
    char name[ULOC_FULLNAME_CAPACITY];
    UErrorCode status = U_ZERO_ERROR;
    uloc_getLocaleForLCID(static_cast<uint32_t>(locale_id), name, ULOC_FULLNAME_CAPACITY, &status);
    return U_FAILURE(status) ? locale_ : icu::Locale(name);
  }

  IcuCodePage code_page_;
  icu::Locale locale_;
  IcuDateFormat short_date_;
  IcuDateFormat short_time_;
  std::vector<MonthName> months_;
  std::unique_ptr<icu::Collator> collator_;
};

}  // namespace

int CodePageOfCodeSet(std::string_view code_set) {
  std::string name;
  for (char c : code_set) {
    if (IsAsciiLetter(c) || (c >= '0' && c <= '9')) name += AsciiUpper(c);
  }
  for (const auto& entry : kCodeSets) {
    if (entry.code_set == name) return entry.code_page;
  }
  return kCodePageUtf8;
}

int HostCodePage() {
  locale_t user = newlocale(LC_CTYPE_MASK, "", locale_t{});
  if (user == locale_t{}) {
    // Not installed; its name may still say it: "ko_KR.eucKR@modifier".
    std::string name = UserSetting("LC_CTYPE");
    size_t dot = std::min(name.find('.'), name.size() - 1);
    return CodePageOfCodeSet(name.substr(dot + 1, name.find('@') - dot - 1));
  }
  int code_page = CodePageOfCodeSet(nl_langinfo_l(CODESET, user));
  freelocale(user);
  return code_page;
}

std::unique_ptr<Locale> MakeIcuLocale(int code_page, const std::string& locale_name) {
  return std::make_unique<IcuLocale>(
      code_page, locale_name.empty() ? UserLocale() : icu::Locale(locale_name.c_str()));
}

}  // namespace vesko
