#pragma once

#include <new>
#include <utility>

#include "base/RunTimeError.h"
#include "platform/Automation.h"

namespace vesko {

/// The HRESULT that stands for a run-time error. A negative number is one already; type mismatch
/// and overflow have codes of their own; every other number n becomes 0x800A0000 + n, the range in
/// which automation clients look for run-time errors.
inline HRESULT ToHresult(const RunTimeError& error) {
  const int32_t number = error.Number();
  if (number < 0) return number;
  if (number == kTypeMismatch) return DISP_E_TYPEMISMATCH;
  if (number == kOverflow) return DISP_E_OVERFLOW;
  return static_cast<HRESULT>(0x800A0000u | (static_cast<uint32_t>(number) & 0xFFFFu));
}

/// Runs what a client called and returns the HRESULT that `call` returns. No exception passes: a
/// RunTimeError becomes its HRESULT, a lack of memory E_OUTOFMEMORY and any other E_UNEXPECTED,
/// since the client may be written in a language that knows nothing of exceptions.
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
