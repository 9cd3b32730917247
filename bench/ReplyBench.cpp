// One large message that arrives in pieces: processor time of a check, the parsing of the message
// included, and the memory at its peak and after it.
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <utility>

#include "Table.h"
#include "config/mmEncrypt.h"
#include "desktop/linux/LinuxDesktop.h"
#include "pop3/CheckRun.h"
#include "support/FakeClock.h"
#include "support/FakeShell.h"
#include "support/FakeSound.h"
#include "support/MemoryRegistry.h"

namespace vesko {
namespace {

/// A server with one message whose body it makes up piece by piece, so that no copy of the message
/// stands beside the one that is measured.
class LargeMessageSocket : public Socket, public Pump {
 public:
  LargeMessageSocket(size_t size, size_t piece) : size_(size), piece_(piece) {}

  SocketState State() const override { return state_; }
  void SetLocalPort(int32_t) override {}
  void Connect(const Text&, int32_t) override {
    state_ = SocketState::kConnected;
    reply_ = u"+OK\r\n";
  }
  void SendData(TextView text) override {
    reply_ = text.starts_with(u"STAT") ? u"+OK 1 9\r\n" : u"+OK\r\n";
    if (text.starts_with(u"TOP")) left_ = size_;
    if (text.starts_with(u"TOP")) reply_ += u"Subject: large\r\nMessage-ID: <1>\r\n\r\n";
  }
  Text GetData() override {
    received_ += reply_.size();
    return std::exchange(reply_, {});
  }
  uint64_t BytesReceived() const override { return received_; }
  void Close() override { state_ = SocketState::kClosed; }

  void RunPending(std::chrono::milliseconds) override {
    if (state_ == SocketState::kClosed) return;
    if (reply_.empty() && left_ > 0) MakePiece();
    if (!reply_.empty()) on_data_arrival();
  }

 private:
  void MakePiece() {
    reply_.assign(std::min(piece_, left_), u'x');
    for (size_t i = 76; i < reply_.size(); i += 78) reply_.replace(i - 1, 2, u"\r\n");
    left_ -= reply_.size();
    if (left_ == 0) reply_ += u"\r\n.\r\n";
  }

  const size_t size_;
  const size_t piece_;
  size_t left_ = 0;
  uint64_t received_ = 0;
  SocketState state_ = SocketState::kClosed;
  Text reply_;
};

class BlindView : public ProgressView {
 public:
  void ShowCaption(const Text&) override {}
  void ShowProgress(const Text&) override {}
  void ShowTime(const Text&) override {}
  void ShowCommand(const Text&) override {}
  void SetProgressMaximum(int32_t) override {}
  void SetProgressValue(int32_t) override {}
  void EnableNext(bool) override {}
  void ShowError(const Text&, const Text&) override {}
  int AskRetry(const Text&, const Text&) override { return 1; }
  bool AskCredentials(Credentials&) override { return false; }
  void UnloadWindow() override {}
};

double CpuSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

/// Memory of this process from /proc/self/status, in bytes.
double Memory(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field)) return 1024.0 * std::atof(line.c_str() + field.size());
  }
  return 0;
}

bool Measure(Table& table, size_t size, size_t piece) {
  const auto locale = MakeIcuLocale(949, "ko_KR");
  LargeMessageSocket socket(size, piece);
  FakeClock clock;
  FakeShell shell;
  MemoryRegistry registry;
  NotingSound sound;
  BlindView view;
  SharedData data;
  const Services services{*locale, registry, shell, sound, clock, socket, socket};
  data.configuration.AddAccount(
      {u"Home", u"pop.example.org", u"ann", Encrypt(u"secret", *locale), u"110", u"0"});
  CheckRun run(services, data, view);

  std::ofstream("/proc/self/clear_refs") << "5";  // the peak starts afresh
  const double memory = Memory("VmRSS:");
  const double cpu = CpuSeconds();
  run.Activate();
  table.Add("pieces of " + std::to_string(piece),
            {static_cast<double>(size) / 1e6, CpuSeconds() - cpu, (Memory("VmHWM:") - memory) / 1e6,
             (Memory("VmRSS:") - memory) / 1e6});
  return data.mails.Count() == 1;
}

}  // namespace
}  // namespace vesko

int main(int argc, char** argv) {
  const size_t size = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 50'000'000;
  vesko::Table table("A check of one long reply", "", {"size MB", "CPU s", "peak MB", "kept MB"});
  bool fetched = true;
  // The largest is the most that a socket reads at once.
  for (size_t piece : {16, 1024, 1460, 65536, 262144}) {
    fetched = vesko::Measure(table, size, piece) && fetched;
  }
  return fetched ? 0 : 1;
}
