#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "base/Text.h"

namespace vesko {

// Numbers of run-time errors, as automation clients know them.
inline constexpr int32_t kInvalidProcedureCall = 5;
inline constexpr int32_t kOverflow = 6;
inline constexpr int32_t kSubscriptOutOfRange = 9;
inline constexpr int32_t kTypeMismatch = 13;
inline constexpr int32_t kFileNotFound = 53;
inline constexpr int32_t kKeyAlreadyPresent = 457;

/// The one exception type of this program: a run-time error as automation numbers them. It never
/// leaves the component: the entry points turn it into an HRESULT. A negative number is an HRESULT
/// already. Source and description may be empty; a description never holds a password.
class RunTimeError : public std::exception {
 public:
  explicit RunTimeError(int32_t number, Text source = {}, Text description = {})
      : number_(number),
        source_(std::move(source)),
        description_(std::move(description)),
        what_("run-time error " + std::to_string(number)) {}

  /// The number of the error, what raised it, and words for a person. The number alone decides how
  /// the error is handled.
  int32_t Number() const { return number_; }
  const Text& Source() const { return source_; }
  const Text& Description() const { return description_; }
  /// The number in words, for a debugger.
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  int32_t number_;
  Text source_;
  Text description_;
  std::string what_;
};

/// Runs one step and ignores a run-time error that it raises, so that the caller can go on with the
/// next one. Returns whether the step ran to its end. Any other exception propagates: it is a bug,
/// or memory has run out.
template <typename Step>
bool IgnoreErrors(Step&& step) {
  try {
    std::forward<Step>(step)();
    return true;
  } catch (const RunTimeError&) {
    return false;
  }
}

}  // namespace vesko
