#pragma once

#include "base/Text.h"

namespace vesko {

class Sound {
 public:
  virtual ~Sound() = default;

  /// Number of wave output devices; returns at once.
  virtual int OutputDevices() = 0;

  /// Starts to play a wave file and returns at once; it plays in the background, and a later call
  /// replaces it. Raises run-time error 5 where it cannot start.
  virtual void Play(const Text& path) = 0;
};

}  // namespace vesko
