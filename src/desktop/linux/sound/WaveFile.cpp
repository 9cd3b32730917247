#include "desktop/linux/sound/WaveFile.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace vesko {
namespace {

constexpr int kMostChannels = 8;
constexpr int kHighestRate = 192'000;

/// The library reads many other formats, but the setting is for wave files on every system.
bool IsWave(const SF_INFO& info) {
  const int type = info.format & SF_FORMAT_TYPEMASK;
  return type == SF_FORMAT_WAV || type == SF_FORMAT_WAVEX;
}

bool IsPlayable(const SF_INFO& info) {
  return IsWave(info) && info.channels <= kMostChannels && info.samplerate <= kHighestRate;
}

/// Converts a fraction of the full range. Louder samples are clipped.
short ToInteger(float sample) {
  return static_cast<short>(std::lrint(std::clamp(sample * 32768.0, -32768.0, 32767.0)));
}

}  // namespace

std::unique_ptr<WaveFile> WaveFile::Open(const QString& path) {
  if (!QFileInfo(path).isFile()) return nullptr;
  SF_INFO info = {};
  File file(sf_open(QFile::encodeName(path).constData(), SFM_READ, &info));
  if (!file || !IsPlayable(info)) return nullptr;
  std::unique_ptr<WaveFile> wave(new WaveFile(std::move(file), info));
  wave->open(ReadOnly);
  return wave;
}

WaveFile::WaveFile(File file, const SF_INFO& info)
    : file_(std::move(file)), info_(info), frames_left_(info.frames) {}

QAudioFormat WaveFile::Format() const {
  QAudioFormat format;
  format.setSampleFormat(QAudioFormat::Int16);
  format.setChannelCount(info_.channels);
  format.setSampleRate(info_.samplerate);
  return format;
}

qint64 WaveFile::bytesAvailable() const {
  return frames_left_ * FrameSize() + QIODevice::bytesAvailable();
}

qint64 WaveFile::readData(char* data, qint64 longest) {
  const sf_count_t wanted = std::min<sf_count_t>(longest / FrameSize(), frames_left_);
  // Read as fractions: asked for integers, the library either truncates the samples of files that
  // hold fractions or scales them to the loudest one.
  std::vector<float> samples(static_cast<size_t>(wanted * info_.channels));
  const sf_count_t read = sf_readf_float(file_.get(), samples.data(), wanted);
  std::transform(samples.begin(), samples.begin() + read * info_.channels,
                 reinterpret_cast<short*>(data), ToInteger);
  frames_left_ = read > 0 ? frames_left_ - read : 0;
  return read * FrameSize();
}

}  // namespace vesko
