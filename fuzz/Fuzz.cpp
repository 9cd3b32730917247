#include "Fuzz.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "desktop/linux/LinuxDesktop.h"

namespace vesko::fuzz {
namespace {

constexpr size_t kLarge = 100'000;

}  // namespace

size_t Input::Choose(size_t limit) {
  if (left_.empty()) return 0;
  const auto choice = static_cast<uint8_t>(left_.front());
  left_.remove_prefix(1);
  return (choice >= '0' ? choice - '0' : choice) % limit;
}

std::string Input::Until(char end) {
  const size_t at = left_.find(end);
  std::string piece(left_.substr(0, at));
  left_.remove_prefix(at == std::string_view::npos ? left_.size() : at + 1);
  return piece;
}

void Expect(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "broken: %s\n", property);
  std::abort();
}

void Expect(int32_t raised, std::initializer_list<int32_t> allowed, const char* property) {
  const bool is_allowed = std::find(allowed.begin(), allowed.end(), raised) != allowed.end();
  if (raised == 0 || is_allowed) return;
  std::fprintf(stderr, "run-time error %d\n", raised);
  Expect(false, property);
}

const Locale& LocaleAt(size_t position) {
  static const std::array<std::unique_ptr<Locale>, kLocales> locales = {
      MakeIcuLocale(kCodePageUtf8, "en_GB"), MakeIcuLocale(949, "ko_KR"),
      MakeIcuLocale(932, "ja_JP"),           MakeIcuLocale(1252, "de_DE"),
      MakeIcuLocale(kCodePageUtf8, "tr_TR"), MakeIcuLocale(936, "zh_CN")};
  return *locales[position];
}

Text Representable(const Locale& locale, const std::string& bytes) {
  return locale.ToText(locale.ToBytes(locale.ToText(bytes)));
}

std::string Inflate(const std::string& content) {
  std::string large;
  if (content.empty()) return large;
  large.reserve(kLarge + content.size());
  while (large.size() < kLarge) large += content;
  return large;
}

bool IsShowable(TextView text, bool lines) {
  return std::none_of(text.begin(), text.end(), [&](char16_t c) {
    if (lines && (c == u'\r' || c == u'\n' || c == u'\t')) return false;
    const bool turns_direction = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    return c < 32 || (c >= 127 && c < 160) || turns_direction;
  });
}

}  // namespace vesko::fuzz
