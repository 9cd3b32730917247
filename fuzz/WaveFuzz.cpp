// Wave files. The content lies behind a RIFF header, so that every input is read.

#include "Fuzz.h"
#include "desktop/linux/sound/WaveFile.h"
#include "support/TempFolder.h"

namespace vesko::fuzz {
namespace {

// Bytes of samples that a byte of a compressed file can stand for.
constexpr size_t kMostExpansion = 64;

void Run(const std::string& content) {
  static const TempFolder folder;
  folder.Write("sound.wav", content);
  const auto wave = WaveFile::Open(QString::fromStdString(folder / "sound.wav"));
  if (!wave) return;
  Expect(wave->Format().isValid(), "what is played has a format");
  char samples[4096];
  size_t total = 0;
  for (qint64 read = 0; (read = wave->read(samples, sizeof samples)) > 0;) {
    total += static_cast<size_t>(read);
    Expect(total <= kMostExpansion * content.size(), "no more is played than the file has");
  }
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace std::string_literals;
  vesko::fuzz::Run("RIFF\xFF\xFF\xFF\x7FWAVE"s.append(reinterpret_cast<const char*>(data), size));
  return 0;
}
