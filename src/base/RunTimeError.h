#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include "base/Text.h"

namespace vesko {

inline constexpr int32_t kOverflow = 6;
inline constexpr int32_t kSubscriptOutOfRange = 9;
inline constexpr int32_t kTypeMismatch = 13;
inline constexpr int32_t kInvalidProcedureCall = 5;
inline constexpr int32_t kFileNotFound = 53;
inline constexpr int32_t kKeyAlreadyPresent = 457;

/// The one exception of this program: a run-time error as automation numbers them. It never leaves
/// the component. The description never holds a password.
class RunTimeError : public std::exception {
 public:
  explicit RunTimeError(int32_t number, Text source = {}, Text description = {})
      : number_(number),
        source_(std::move(source)),
        description_(std::move(description)),
        what_("run-time error " + std::to_string(number)) {}

  int32_t Number() const { return number_; }
  const Text& Source() const { return source_; }
  const Text& Description() const { return description_; }
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  int32_t number_;
  Text source_;
  Text description_;
  std::string what_;
};

/// Runs one step whose run-time error is ignored: the step has no effect and the caller goes on.
/// Returns whether the step ran to its end. Other exceptions are faults of ours and pass.
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
