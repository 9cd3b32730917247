#pragma once

#include <new>
#include <utility>

#include "base/RunTimeError.h"
#include "platform/Automation.h"

namespace vesko {

/// The result code that stands for a run-time error: a negative number is one already, and the
/// numbers of automation's conversions have codes of their own.
inline HRESULT ToHresult(const RunTimeError& error) {
  const int32_t number = error.Number();
  if (number < 0) return number;
  if (number == kTypeMismatch) return DISP_E_TYPEMISMATCH;
  if (number == kOverflow) return DISP_E_OVERFLOW;
  return static_cast<HRESULT>(0x800A0000u | (static_cast<uint32_t>(number) & 0xFFFFu));
}

/// Runs what a client called, `call` returning an HRESULT. Exceptions end here: the client may be
/// written in any language.
template <typename Call>
HRESULT Guard(Call&& call) noexcept {
  try {
    return std::forward<Call>(call)();
  } catch (const RunTimeError& error) {
    return ToHresult(error);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace vesko
