#pragma once

#include <vector>

#include "base/RunTimeError.h"
#include "platform/Sound.h"

namespace vesko {

/// Notes what is played, and cannot play it.
struct NotingSound : Sound {
  int OutputDevices() override { return 1; }
  void Play(const Text& path) override {
    played.push_back(path);
    throw RunTimeError(kInvalidProcedureCall);  // which stops nothing
  }
  std::vector<Text> played;
};

}  // namespace vesko
