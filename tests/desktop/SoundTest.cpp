#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <functional>

#include "desktop/linux/LinuxDesktop.h"
#include "support/ErrorOf.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

constexpr int kPatience = 20'000;  // milliseconds

bool WaitFor(const std::function<bool()>& condition) {
  QElapsedTimer waited;
  waited.start();
  while (waited.elapsed() < kPatience) {
    if (condition()) return true;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  return false;
}

/// A sound server with one device, whose output is recorded.
class SoundServer {
 public:
  SoundServer() {
    const QString socket = folder_.filePath("native");
    qputenv("PULSE_SERVER", ("unix:" + socket).toUtf8());
    qputenv("XDG_RUNTIME_DIR", folder_.path().toUtf8());
    qputenv("HOME", folder_.path().toUtf8());
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

/// One server for all, as a process connects only once.
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

TEST_F(SoundTest, WhatIsNoWaveFileIsRefused) {
  const std::unique_ptr<Sound> sound = MakeQtSound();
  const TempFolder folder;
  const Text path = FromAscii(folder / "sample.wav");
  for (const Text& wrong : {Text(), path, FromAscii(folder.Path()), Text(u"/dev/zero")}) {
    EXPECT_EQ(Playing(*sound, wrong), kInvalidProcedureCall);
  }
  const struct {
    const char* name;
    QByteArray content;
    bool plays;
  } kCases[] = {
      {"words", "RIFF? No.", false},
      {"no format", Sample().left(12) + Sample().mid(36), false},
      {"cut off in the format", Sample().left(30), false},
      {"a chunk that promises gigabytes", SampleWith(16, "\xFF\xFF\xFF\x7F"), false},
      {"24 bits", SampleWith(34, "\x18"), false},
      {"samples that promise gigabytes", SampleWith(40, "\xFF\xFF\xFF\x7F"), true},
      {"a chunk of odd length before",
       Sample().left(12) + QByteArray("LIST\1\0\0\0ab", 10) + Sample().mid(12), true},
  };
  for (const auto& test : kCases) {
    folder.Write("sample.wav", test.content.toStdString());
    EXPECT_EQ(Playing(*sound, path), test.plays ? 0 : kInvalidProcedureCall) << test.name;
    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
  }
}

// In a process of its own: a connection to a server is made once.
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
