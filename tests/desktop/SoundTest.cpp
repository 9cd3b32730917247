#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <functional>
#include <vector>

#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/sound/WaveFile.h"
#include "support/ErrorOf.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

constexpr int kPatience = 20'000;  // milliseconds

bool WaitFor(const std::function<bool()>& condition) {
  for (QDeadlineTimer end(kPatience); !condition();) {
    if (end.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return true;
}

/// A sound server with one device, whose output is recorded.
class SoundServer {
 public:
  SoundServer() {
    const QString socket = folder_.filePath("native");
    qputenv("PULSE_SERVER", ("unix:" + socket).toUtf8());
    for (const char* name : {"XDG_RUNTIME_DIR", "HOME"}) qputenv(name, folder_.path().toUtf8());
    server_.start("pulseaudio", {"-n", "--daemonize=no", "--exit-idle-time=30", "--use-pid-file=no",
                                 "--disable-shm=yes", "-L", "module-null-sink sink_name=test", "-L",
                                 "module-native-protocol-unix auth-anonymous=1 socket=" + socket});
    WaitFor([&] { return QFile::exists(socket); });
    recorder_.start("parec", {"--raw", "-d", "test.monitor"});
    WaitFor([&] { return recorder_.bytesAvailable() > 0; });
  }

  ~SoundServer() {
    for (QProcess* process : {&recorder_, &server_}) {
      process->kill();
      process->waitForFinished();
    }
  }

  bool Silent() {
    const QByteArray heard = recorder_.readAllStandardOutput();
    return std::all_of(heard.begin(), heard.end(), [](char c) { return c == 0; });
  }

 private:
  QTemporaryDir folder_;
  QProcess server_;
  QProcess recorder_;
};

/// One server for all tests, because a process connects only once.
class SoundTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { server_ = std::make_unique<SoundServer>(); }
  static void TearDownTestSuite() { server_.reset(); }

  static inline std::unique_ptr<SoundServer> server_;
};

int32_t Playing(Sound& sound, const Text& path) {
  return ErrorOf([&] { sound.Play(path); });
}

QByteArray Sample() {
  QFile file(VESKO_SAMPLE);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The bytes at an offset of the sample replaced; the format begins at 20, the samples at 44.
QByteArray SampleWith(qsizetype offset, const QByteArray& bytes) {
  return Sample().replace(offset, bytes.size(), bytes);
}

TEST_F(SoundTest, AWaveFileIsHeardWhileTheProgramGoesOn) {
  const std::unique_ptr<Sound> sound = MakeQtSound();
  QElapsedTimer taken;
  taken.start();
  ASSERT_EQ(sound->OutputDevices(), 1);
  sound->Play(QString(VESKO_SAMPLE).toStdU16String());
  EXPECT_LT(taken.elapsed(), 1000);
  EXPECT_TRUE(WaitFor([&] { return !server_->Silent(); }));
}

TEST_F(SoundTest, WhatIsNoFileIsRefused) {
  const TempFolder folder;
  const Text none[] = {u"", FromAscii(folder / "none.wav"), FromAscii(folder.Path()), u"/dev/zero"};
  for (const Text& path : none) EXPECT_EQ(Playing(*MakeQtSound(), path), kInvalidProcedureCall);
}

TEST(WaveFileTest, WhatIsNoWaveFileIsRefused) {
  const TempFolder folder;
  const QByteArray refused[] = {
      "RIFF? No.",
      Sample().left(12) + Sample().mid(36),               // no format
      SampleWith(16, "\xFF\xFF\xFF\x7F"),                 // a chunk that promises gigabytes
      SampleWith(22, "\x09"),                             // more channels than outputs have
      SampleWith(24, QByteArray("\xFF\xFF\xFF\x0F", 4)),  // a rate beyond hearing
      "fLaC" + Sample().mid(4)};
  for (const QByteArray& content : refused) {
    folder.Write("w.wav", content.toStdString());
    EXPECT_FALSE(WaveFile::Open(QString::fromStdString(folder / "w.wav"))) << &content - refused;
  }
}

QByteArray LittleEndian(quint32 number, int size) {
  QByteArray bytes;
  for (; size > 0; --size, number >>= 8) bytes += static_cast<char>(number);
  return bytes;
}

/// A wave file with one channel. `extended` writes the longer form of the format chunk.
QByteArray Wave(quint32 kind, quint32 bits, const QByteArray& samples, bool extended = false) {
  QByteArray format = LittleEndian(extended ? 0xFFFE : kind, 2) + LittleEndian(1, 2) +
                      LittleEndian(8000, 4) + LittleEndian(8000 * bits / 8, 4) +
                      LittleEndian(bits / 8, 2) + LittleEndian(bits, 2);
  if (extended) {
    format += LittleEndian(22, 2) + LittleEndian(bits, 2) + LittleEndian(4, 4) +
              LittleEndian(kind, 2) + QByteArray::fromHex("000000001000800000AA00389B71");
  }
  const QByteArray chunks = "WAVEfmt " + LittleEndian(format.size(), 4) + format + "data" +
                            LittleEndian(samples.size(), 4) + samples;
  return "RIFF" + LittleEndian(chunks.size(), 4) + chunks;
}

TEST(WaveFileTest, SamplesOfEveryWidthBecome16Bits) {
  constexpr quint32 kPcm = 1, kFloat = 3;
  const auto hex = [](const char* digits) { return QByteArray::fromHex(digits); };
  const TempFolder folder;
  const struct {
    const char* name;
    QByteArray content;
    std::vector<qint16> samples;
  } rows[] = {
      {"8 bits", Wave(kPcm, 8, hex("8000FF40")), {0, -0x8000, 0x7F00, -0x4000}},
      {"24 bits", Wave(kPcm, 24, hex("563412000080")), {0x1234, -0x8000}},
      {"24 bits, extensible", Wave(kPcm, 24, hex("563412000080"), true), {0x1234, -0x8000}},
      {"32 bits", Wave(kPcm, 32, hex("78563412")), {0x1234}},
      {"fractions, one too loud", Wave(kFloat, 32, hex("0000003F 00000040")), {0x4000, 0x7FFF}},
      {"fractions, extensible", Wave(kFloat, 32, hex("000000BF"), true), {-0x4000}},
      {"a byte too many", Wave(kPcm, 16, hex("341200")), {0x1234}},
      {"more promised than there is",
       Wave(kPcm, 16, hex("3412")).replace(40, 4, "\xFF\xFF\xFF\x7F"),
       {0x1234}},
      {"a chunk of odd length before",
       Wave(kPcm, 16, hex("3412")).insert(12, QByteArray("LIST\1\0\0\0ab", 10)),
       {0x1234}},
  };
  for (const auto& row : rows) {
    folder.Write("w.wav", row.content.toStdString());
    const auto wave = WaveFile::Open(QString::fromStdString(folder / "w.wav"));
    ASSERT_TRUE(wave) << row.name;
    EXPECT_EQ(wave->Format().sampleRate(), 8000) << row.name;
    const QByteArray read = wave->readAll();
    const auto* const samples = reinterpret_cast<const qint16*>(read.constData());
    EXPECT_EQ(std::vector<qint16>(samples, samples + read.size() / 2), row.samples) << row.name;
  }
}

// In a process of its own, because a process connects to a server only once.
TEST(NoSoundTest, WithoutASoundServerThereIsNothingToPlayOn) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto play_on_nothing = [] {
    qputenv("PULSE_SERVER", "unix:/no/such/server");
    QElapsedTimer taken;
    taken.start();
    const std::unique_ptr<Sound> sound = MakeQtSound();
    const bool good =
        sound->OutputDevices() == 0 &&
        Playing(*sound, QString(VESKO_SAMPLE).toStdU16String()) == kInvalidProcedureCall &&
        taken.elapsed() < 1000;
    std::_Exit(good ? 0 : 1);
  };
  EXPECT_EXIT(play_on_nothing(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace vesko

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
