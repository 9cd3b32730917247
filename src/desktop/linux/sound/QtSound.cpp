#include <QAudioDevice>
#include <QAudioSink>
#include <QMediaDevices>
#include <QString>

#include "base/RunTimeError.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/sound/WaveFile.h"

namespace vesko {
namespace {

// Wave files are decoded here and their samples go to the sound server directly. QSoundEffect
// never finishes loading a damaged file, and QMediaPlayer loads every codec first.
class QtSound : public Sound {
 public:
  int OutputDevices() override { return static_cast<int>(QMediaDevices::audioOutputs().size()); }

  void Play(const Text& path) override {
    Stop();
    wave_ = WaveFile::Open(QString::fromStdU16String(path));
    if (!wave_ || OutputDevices() == 0) throw RunTimeError(kInvalidProcedureCall);
    output_ = std::make_unique<QAudioSink>(QMediaDevices::defaultAudioOutput(), wave_->Format());
    output_->start(wave_.get());
    if (output_->error() != QAudio::NoError) throw RunTimeError(kInvalidProcedureCall);
  }

 private:
  void Stop() {
    output_.reset();
    wave_.reset();
  }

  std::unique_ptr<WaveFile> wave_;
  std::unique_ptr<QAudioSink> output_;  // reads from wave_, so it is destroyed first
};

}  // namespace

std::unique_ptr<Sound> MakeQtSound() { return std::make_unique<QtSound>(); }

}  // namespace vesko
