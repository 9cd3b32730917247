#pragma once

#include <QAudioFormat>
#include <QFile>
#include <QIODevice>
#include <QString>
#include <memory>

namespace vesko {

/// The samples of a wave file (RIFF with PCM data), to be read by a sound output; never more than
/// the file really has. Null where the file is none or cannot be read.
class WaveFile : public QIODevice {
 public:
  static std::unique_ptr<WaveFile> Open(const QString& path);

  const QAudioFormat& Format() const { return format_; }

  bool isSequential() const override { return true; }
  qint64 bytesAvailable() const override { return left_ + QIODevice::bytesAvailable(); }

 protected:
  qint64 readData(char* data, qint64 longest) override;
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  explicit WaveFile(const QString& path) : file_(path) {}

  bool FindSamples();
  bool ReadFormat(const QByteArray& chunk);

  QFile file_;
  QAudioFormat format_;
  qint64 left_ = 0;
};

}  // namespace vesko
