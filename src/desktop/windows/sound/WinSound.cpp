#include <windows.h>

#include "desktop/windows/WindowsDesktop.h"
// After windows.h, whose types it uses.
#include <mmsystem.h>

#include <string>

#include "base/RunTimeError.h"

namespace vesko {

namespace {

class WinSound final : public Sound {
 public:
  explicit WinSound(const Locale& locale) : locale_(locale) {}

  // The path that still plays in the background belongs to this object.
  ~WinSound() override { sndPlaySoundA(nullptr, 0); }

  int OutputDevices() override { return static_cast<int>(waveOutGetNumDevs()); }

  void Play(const Text& path) override {
    sndPlaySoundA(nullptr, 0);
    path_ = locale_.ToBytes(path);
    if (!sndPlaySoundA(path_.c_str(), SND_ASYNC | SND_FILENAME)) {
      throw RunTimeError(kInvalidProcedureCall);
    }
  }

 private:
  const Locale& locale_;
  std::string path_;
};

static_assert((SND_ASYNC | SND_FILENAME) == 0x20001);

}  // namespace

std::unique_ptr<Sound> MakeWinSound(const Locale& locale) {
  return std::make_unique<WinSound>(locale);
}

}  // namespace vesko
