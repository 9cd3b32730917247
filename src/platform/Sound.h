#pragma once

#include "base/Text.h"

namespace vesko {

/// Plays wave files.
class Sound {
 public:
  virtual ~Sound() = default;

  /// Returns the number of wave output devices without waiting for one.
  virtual int OutputDevices() = 0;

  /// Starts to play the wave file at a path and returns at once. It plays in the background; a
  /// later call replaces it. Raises run-time error 5 where it cannot start. The file is untrusted:
  /// a damaged one is refused or plays as far as it can be read.
  virtual void Play(const Text& path) = 0;
};

}  // namespace vesko
