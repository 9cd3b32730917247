#pragma once

#include <sndfile.h>

#include <QAudioFormat>
#include <QIODevice>
#include <QString>
#include <memory>

namespace vesko {

/// The samples of a wave file, converted to 16-bit integers for a sound output. The file is not
/// trusted: lengths that go beyond its end are cut there.
class WaveFile : public QIODevice {
 public:
  /// Null where the path names no regular file, the file is no wave file, or its channels or rate
  /// are beyond what sound outputs take (8, 192 kHz).
  static std::unique_ptr<WaveFile> Open(const QString& path);

  /// The format in which the samples are read: that of the file, but for the 16 bits.
  QAudioFormat Format() const;

  bool isSequential() const override { return true; }
  /// Bytes that are still to be read, as 16-bit samples.
  qint64 bytesAvailable() const override;

 protected:
  /// Whole frames only.
  qint64 readData(char* data, qint64 longest) override;
  qint64 writeData(const char*, qint64) override { return -1; }

 private:
  struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  using File = std::unique_ptr<SNDFILE, Close>;

  WaveFile(File file, const SF_INFO& info);
  qint64 FrameSize() const { return info_.channels * static_cast<qint64>(sizeof(short)); }

  File file_;
  SF_INFO info_;
  sf_count_t frames_left_;
};

}  // namespace vesko
