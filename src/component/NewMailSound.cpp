#include "component/NewMailSound.h"

#include "base/RunTimeError.h"

namespace vesko {

void PlayNewMailSound(Sound& sound, const Text& path) {
  IgnoreErrors([&] {
    if (sound.OutputDevices() >= 1) sound.Play(path);
  });
}

}  // namespace vesko
