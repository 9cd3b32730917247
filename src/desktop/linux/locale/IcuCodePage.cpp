#include "desktop/linux/locale/IcuCodePage.h"

#include <unicode/ucnv_cb.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <iterator>

#include "base/RunTimeError.h"

namespace vesko {
namespace {

struct CodePage {
  int number;
  const char* converter;
};

// Exact names: ICU's short ones may mean another maker's table, which differs in single characters
// from what the mail programs of the region write. The last entry stands for all others.
constexpr CodePage kCodePages[] = {
    {874, "windows-874-2000"},    {932, "ibm-943_P15A-2003"},   {936, "windows-936-2000"},
    {949, "windows-949-2000"},    {950, "windows-950-2000"},    {1250, "ibm-5346_P100-1998"},
    {1251, "ibm-5347_P100-1998"}, {1252, "ibm-5348_P100-1997"}, {1253, "ibm-5349_P100-1998"},
    {1254, "ibm-5350_P100-1998"}, {1255, "ibm-9447_P100-2002"}, {1256, "ibm-9448_X100-2005"},
    {1257, "ibm-9449_P100-2002"}, {1258, "ibm-5354_P100-1998"}, {kCodePageUtf8, "UTF-8"},
};

const CodePage& FindCodePage(int number) {
  auto last = std::prev(std::end(kCodePages));
  return *std::find_if(std::begin(kCodePages), last,
                       [number](const CodePage& entry) { return entry.number == number; });
}

// ICU's own callbacks write the substitute control character for some malformed single bytes.
void ReplaceMalformed(const void*, UConverterToUnicodeArgs* args, const char*, int32_t,
                      UConverterCallbackReason reason, UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;
  *status = U_ZERO_ERROR;
  constexpr UChar kReplacement = 0xFFFD;
  ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, status);
}

void ReplaceUnmappable(const void*, UConverterFromUnicodeArgs* args, const UChar*, int32_t, UChar32,
                       UConverterCallbackReason reason, UErrorCode* status) {
  if (reason > UCNV_IRREGULAR) return;
  *status = U_ZERO_ERROR;
  ucnv_cbFromUWriteBytes(args, "?", 1, 0, status);
}

ConverterPtr OpenConverter(int number) {
  UErrorCode status = U_ZERO_ERROR;
  ConverterPtr converter(ucnv_open(FindCodePage(number).converter, &status));
  if (U_FAILURE(status)) throw RunTimeError(kInvalidProcedureCall);
  ucnv_setToUCallBack(converter.get(), ReplaceMalformed, nullptr, nullptr, nullptr, &status);
  ucnv_setFromUCallBack(converter.get(), ReplaceUnmappable, nullptr, nullptr, nullptr, &status);
  return converter;
}

// Without an early exit these loops become vector code.
template <typename Units>
bool IsAscii(const Units& units) {
  uint16_t bits = 0;
  for (auto unit : units) bits |= static_cast<uint16_t>(unit);
  return bits < 128;
}

Text Widen(std::string_view ascii) { return Text(ascii.begin(), ascii.end()); }

// ICU's table for 932 rotates three control characters, as mainframes did; Windows does not.
void RotateControls(Text& text, const char16_t (&from)[3], const char16_t (&to)[3]) {
  for (char16_t& c : text) {
    auto found = std::find(std::begin(from), std::end(from), c);
    if (found != std::end(from)) c = to[found - from];
  }
}

constexpr char16_t kRotated[] = {0x1C, 0x7F, 0x1A};
constexpr char16_t kStraight[] = {0x1A, 0x1C, 0x7F};

Text RunToText(UConverter* converter, int number, std::string_view bytes, bool flush) {
  Text text(bytes.size() + 8, u'\0');
  const char* source = bytes.data();
  size_t done = 0;
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    UChar* target = text.data() + done;
    ucnv_toUnicode(converter, &target, text.data() + text.size(), &source,
                   bytes.data() + bytes.size(), nullptr, flush, &status);
    done = target - text.data();
    if (status != U_BUFFER_OVERFLOW_ERROR) break;
    text.resize(text.size() * 2);
  }
  text.resize(done);
  if (number == 932) RotateControls(text, kRotated, kStraight);
  return text;
}

class IcuDecoder : public TextDecoder {
 public:
  explicit IcuDecoder(int number) : number_(number), converter_(OpenConverter(number)) {}

  Text Decode(std::string_view bytes) override {
    if (bytes.empty()) return {};
    if (between_characters_ && IsAscii(bytes)) return Widen(bytes);
    Text text = RunToText(converter_.get(), number_, bytes, false);
    // A byte below 128 ends a character in every code page here, be it whole or malformed.
    between_characters_ = static_cast<unsigned char>(bytes.back()) < 128;
    return text;
  }

  void Reset() override {
    ucnv_resetToUnicode(converter_.get());
    between_characters_ = true;
  }

 private:
  int number_;
  ConverterPtr converter_;
  bool between_characters_ = true;
};

}  // namespace

IcuCodePage::IcuCodePage(int code_page)
    : number_(FindCodePage(code_page).number), converter_(OpenConverter(code_page)) {}

Text IcuCodePage::ToText(std::string_view bytes) const {
  if (IsAscii(bytes)) return Widen(bytes);
  ucnv_resetToUnicode(converter_.get());
  return RunToText(converter_.get(), number_, bytes, true);
}

std::string IcuCodePage::ToBytes(TextView text) const {
  if (IsAscii(text)) return std::string(text.begin(), text.end());
  Text rotated;
  if (number_ == 932) {
    rotated = text;
    RotateControls(rotated, kStraight, kRotated);
    text = rotated;
  }
  std::string bytes(text.size() * ucnv_getMaxCharSize(converter_.get()) + 8, '\0');
  const UChar* source = text.data();
  char* target = bytes.data();
  UErrorCode status = U_ZERO_ERROR;
  ucnv_resetFromUnicode(converter_.get());
  ucnv_fromUnicode(converter_.get(), &target, bytes.data() + bytes.size(), &source,
                   text.data() + text.size(), nullptr, true, &status);
  bytes.resize(target - bytes.data());
  return bytes;
}

std::unique_ptr<TextDecoder> IcuCodePage::NewDecoder() const {
  return std::make_unique<IcuDecoder>(number_);
}

int IcuCodePage::TrailBytes(uint8_t lead) const {
  if (number_ != kCodePageUtf8) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  return lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
}

Text IcuCodePage::Character(std::string_view bytes) const {
  Text text = ToText(bytes);
  bool is_one = text.size() == 1 || (text.size() == 2 && U16_IS_LEAD(text[0]));
  bool is_replaced = text == u"\uFFFD" && bytes != "\xEF\xBF\xBD";
  if (!is_one || is_replaced) throw RunTimeError(kInvalidProcedureCall);
  return text;
}

}  // namespace vesko
