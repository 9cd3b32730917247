#include "desktop/linux/sound/WaveFile.h"

#include <QFileInfo>
#include <QtEndian>
#include <algorithm>

namespace vesko {
namespace {

constexpr int kChunkHeader = 8;       // name and length
constexpr int kPlainFormat = 16;      // bytes of the oldest format chunk
constexpr int kExtendedFormat = 40;   // with channel places and a sub-format
constexpr int kSubFormat = 24;        // its offset
constexpr int kLongestFormat = 4096;  // more is no format chunk
constexpr quint16 kPcm = 1;
constexpr quint16 kFloat = 3;
constexpr quint16 kExtensible = 0xFFFE;

template <typename Number>
Number At(const QByteArray& bytes, int offset) {
  return qFromLittleEndian<Number>(bytes.constData() + offset);
}

QAudioFormat::SampleFormat SampleFormat(quint16 kind, quint16 bits) {
  if (kind == kFloat && bits == 32) return QAudioFormat::Float;
  if (kind != kPcm) return QAudioFormat::Unknown;
  if (bits == 8) return QAudioFormat::UInt8;
  if (bits == 16) return QAudioFormat::Int16;
  return bits == 32 ? QAudioFormat::Int32 : QAudioFormat::Unknown;
}

}  // namespace

std::unique_ptr<WaveFile> WaveFile::Open(const QString& path) {
  std::unique_ptr<WaveFile> wave(new WaveFile(path));
  if (!QFileInfo(path).isFile() || !wave->file_.open(ReadOnly) || !wave->FindSamples())
    return nullptr;
  wave->open(ReadOnly);
  return wave;
}

bool WaveFile::FindSamples() {
  const QByteArray riff = file_.read(12);
  if (!riff.startsWith("RIFF") || riff.mid(8) != "WAVE") return false;
  for (;;) {
    const QByteArray header = file_.read(kChunkHeader);
    if (header.size() < kChunkHeader) return false;
    const qint64 size = At<quint32>(header, 4);
    const qint64 begin = file_.pos();
    if (header.startsWith("data")) {
      left_ = std::min(size, file_.size() - begin);
      return format_.isValid();
    }
    if (header.startsWith("fmt ") &&
        !ReadFormat(file_.read(std::min<qint64>(size, kLongestFormat)))) {
      return false;
    }
    if (!file_.seek(begin + size + size % 2)) return false;  // chunks begin at even places
  }
}

bool WaveFile::ReadFormat(const QByteArray& chunk) {
  if (chunk.size() < kPlainFormat) return false;
  quint16 kind = At<quint16>(chunk, 0);
  if (kind == kExtensible && chunk.size() >= kExtendedFormat) kind = At<quint16>(chunk, kSubFormat);
  const quint16 channels = At<quint16>(chunk, 2);
  const quint32 rate = At<quint32>(chunk, 4);
  if (channels > 8 || rate > 192'000) return false;
  format_.setSampleFormat(SampleFormat(kind, At<quint16>(chunk, 14)));
  format_.setChannelCount(channels);
  format_.setSampleRate(static_cast<int>(rate));
  return format_.isValid();
}

qint64 WaveFile::readData(char* data, qint64 longest) {
  const qint64 read = file_.read(data, std::min(longest, left_));
  if (read <= 0) left_ = 0;
  if (read > 0) left_ -= read;
  return read;
}

}  // namespace vesko
