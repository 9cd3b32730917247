#pragma once

#include "base/RunTimeError.h"

namespace vesko {

/// The number of the run-time error that a step raises, 0 where it raises none.
template <typename Step>
int32_t ErrorOf(Step&& step) {
  try {
    step();
    return 0;
  } catch (const RunTimeError& error) {
    return error.Number();
  }
}

}  // namespace vesko
