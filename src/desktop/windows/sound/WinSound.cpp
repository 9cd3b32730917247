#include <windows.h>

#include "desktop/windows/WindowsDesktop.h"
// After windows.h, whose types it uses.
#include <mmsystem.h>

#include <string>

#include "base/RunTimeError.h"

namespace vesko {

namespace {

/// In the code page that the narrow system calls take.
std::string ToAnsi(const Text& text) {
  const auto* wide = reinterpret_cast<const wchar_t*>(text.c_str());
  const int size = WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, wide, -1, bytes.data(), size, nullptr, nullptr);
  return bytes;
}

class WinSound final : public Sound {
 public:
  // The path that still plays in the background belongs to this object.
  ~WinSound() override { sndPlaySoundA(nullptr, 0); }

  int OutputDevices() override { return static_cast<int>(waveOutGetNumDevs()); }

  void Play(const Text& path) override {
    sndPlaySoundA(nullptr, 0);
    path_ = ToAnsi(path);
    if (!sndPlaySoundA(path_.c_str(), SND_ASYNC | SND_FILENAME)) {
      throw RunTimeError(kInvalidProcedureCall);
    }
  }

 private:
  std::string path_;
};

static_assert((SND_ASYNC | SND_FILENAME) == 0x20001);

}  // namespace

std::unique_ptr<Sound> MakeWinSound() { return std::make_unique<WinSound>(); }

}  // namespace vesko
