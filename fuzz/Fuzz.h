#pragma once

#include <cstdint>
#include <string>

#include "base/Text.h"
#include "platform/Locale.h"

namespace vesko::fuzz {

/// One input: first a few characters that choose what is done, then the content. Seeds choose with
/// digits and letters, so that they stay text.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : left_(reinterpret_cast<const char*>(data), size) {}

  /// The next character, as a number below `limit`; 0 where none is left.
  size_t Choose(size_t limit);

  /// Everything up to the next `end`, which is dropped, or to the end of the input.
  std::string Until(char end);

  std::string Rest() { return std::string(left_); }
  bool AtEnd() const { return left_.empty(); }

 private:
  std::string_view left_;
};

/// Ends the process when a property does not hold; the fuzzer then keeps the input.
void Expect(bool holds, const char* property);

/// Expects that the step raises no run-time error but these.
void Expect(int32_t raised, std::initializer_list<int32_t> allowed, const char* property);

/// Locales of every kind of code page, made once.
constexpr size_t kLocales = 6;
const Locale& LocaleAt(size_t position);

/// Bytes as text that the code page can hold: converting it to bytes and back changes nothing.
Text Representable(const Locale& locale, const std::string& bytes);

/// The content again and again until it is so large that work which is not linear in its size takes
/// longer than the fuzzer's time limit for one input.
std::string Inflate(const std::string& content);

/// Whether text for one line, or for several, is fit to be shown: no control characters, none that
/// change the direction of writing, and line ends only where `lines` says so.
bool IsShowable(TextView text, bool lines);

}  // namespace vesko::fuzz
