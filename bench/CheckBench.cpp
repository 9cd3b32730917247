// A check by the component (window shown, every message parsed and kept) beside the least that it
// could cost, a bare blocking loop, with the same server.
//
//   vesko_bench_check             1,000, 10,000 and 32,767 messages from a server in memory
//   vesko_bench_check --dovecot   10,000 messages from Dovecot, in the clear and over TLS
//
// "CPU" is the client's processor time, the system's part included. "Grew" is the growth of the
// peak of resident memory.

#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QApplication>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "BareLoop.h"
#include "SampleMail.h"
#include "Table.h"
#include "config/mmEncrypt.h"
#include "desktop/TlsPeer.h"
#include "desktop/common/SteadyClock.h"
#include "desktop/linux/LinuxDesktop.h"
#include "dialogs/fCheckMail.h"
#include "e2e/Dovecot.h"
#include "maillist/SharedData.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

namespace fs = std::filesystem;

constexpr int kRounds = 3;  // the best counts: the machine has other things to do
constexpr const char* kPassword = "secret";

struct Pipe {
  explicit Pipe(const std::string& command) : file(::popen(command.c_str(), "r")) {}
  ~Pipe() { ::pclose(file); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  FILE* file;
};

struct Cost {
  double wall_seconds = 1e9;
  double processor_seconds = 1e9;  // of the measured process alone, the system's part included
};

double ProcessorSeconds() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

template <typename Step>
Cost Measure(Step step) {
  const auto start = std::chrono::steady_clock::now();
  const double processor_start = ProcessorSeconds();
  step();
  return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
          ProcessorSeconds() - processor_start};
}

double PeakMegabytes() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

struct CheckResult {
  Cost cost;
  double megabytes = 0;  // growth of the peak of resident memory
  int messages = 0;
};

struct Server {
  uint16_t port;
  std::string authorities;  // PEM file; TLS where there is one
};

// One check in this process, which does nothing else, so that its memory can be measured.
CheckResult RunCheck(const std::string& user, const Server& server) {
  int count = 1;
  char name[] = "vesko_bench_check";
  char* arguments[] = {name, nullptr};
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  QApplication application(count, arguments);
  const std::unique_ptr<Toolkit> toolkit = MakeQtToolkit();
  const std::unique_ptr<Locale> locale = MakeIcuLocale(kCodePageUtf8, "en_US");
  const std::vector<int32_t> tls_ports(server.authorities.empty() ? 0 : 1, server.port);
  const std::unique_ptr<Socket> socket = MakeQtSocket(*locale, server.authorities, tls_ports);
  const SteadyClock clock;
  const std::unique_ptr<Registry> registry = MakeSqliteRegistry({}, {});
  const std::unique_ptr<Shell> shell = MakeLinuxShell();
  const std::unique_ptr<Sound> sound = MakeQtSound();
  const Services services{*locale, *registry, *shell, *sound, clock, toolkit->GetPump(), *socket};
  SharedData data;
  const Text password = Encrypt(FromAscii(kPassword), *locale);
  data.configuration.AddAccount(
      {u"Bench", u"127.0.0.1", FromAscii(user), password, Decimal(server.port), u"0"});
  fCheckMail window(*toolkit, services, data);
  window.Prepare();
  CheckResult result;
  const double before = PeakMegabytes();
  result.cost = Measure([&] { window.ShowModal(); });
  result.megabytes = PeakMegabytes() - before;
  result.messages = static_cast<int>(data.mails.Count());
  return result;
}

CheckResult RunCheckInItsOwnProcess(const std::string& user, const Server& server) {
  const std::string self = fs::read_symlink("/proc/self/exe").string();
  Pipe child("'" + self + "' --child " + user + " " + std::to_string(server.port) + " '" +
             server.authorities + "'");
  CheckResult result;
  if (std::fscanf(child.file, "%lf %lf %lf %d", &result.cost.wall_seconds,
                  &result.cost.processor_seconds, &result.megabytes, &result.messages) != 4) {
    throw std::runtime_error("the check came to nothing");
  }
  return result;
}

void Report(Table& table, const std::string& name, const BareLoopResult& bare,
            const Cost& bare_cost, const CheckResult& check) {
  table.Add(name, {bare_cost.wall_seconds, check.cost.wall_seconds,
                   check.cost.wall_seconds / bare_cost.wall_seconds, bare_cost.processor_seconds,
                   check.cost.processor_seconds, static_cast<double>(bare.bytes) / (1 << 20),
                   check.megabytes});
}

void Compare(Table& table, const std::string& name, const std::string& user, const Server& server) {
  const auto run_bare = server.authorities.empty() ? RunBareLoop : RunBareTlsLoop;
  Cost bare_cost;
  CheckResult best;
  BareLoopResult bare;
  for (int round = 0; round < kRounds; ++round) {
    const Cost cost =
        Measure([&] { bare = run_bare(server.port, user, kPassword, Configuration().DownLines); });
    if (cost.wall_seconds < bare_cost.wall_seconds) bare_cost = cost;
    const CheckResult check = RunCheckInItsOwnProcess(user, server);
    if (check.messages != bare.messages) throw std::runtime_error("messages are missing");
    if (check.cost.wall_seconds < best.cost.wall_seconds) best = check;
  }
  Report(table, name, bare, bare_cost, best);
}

void RunOn(int core) {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  CPU_SET(core, &cores);
  ::sched_setaffinity(0, sizeof cores, &cores);
}

// The server in memory, as a process that ends with this object.
class MemoryServer {
 public:
  explicit MemoryServer(int core) {
    const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
    const std::string program = (folder / "vesko_bench_memory_server").string();
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    process_ = ::fork();
    if (process_ == 0) {
      RunOn(core);
      ::dup2(ends[1], STDOUT_FILENO);
      ::execl(program.c_str(), program.c_str(), nullptr);
      ::_exit(127);
    }
    ::close(ends[1]);
    char line[16] = {};
    if (::read(ends[0], line, sizeof line - 1) > 0) port_ = std::atoi(line);
    ::close(ends[0]);
  }
  ~MemoryServer() {
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
  }
  MemoryServer(const MemoryServer&) = delete;
  MemoryServer& operator=(const MemoryServer&) = delete;

  uint16_t Port() const { return static_cast<uint16_t>(port_); }

 private:
  pid_t process_ = -1;
  int port_ = 0;
};

// Client and server take turns, so the cost of a turn depends on where they run: on one core it is
// the work alone, on two each turn wakes a core. Both are measured, since the system would change
// its choice all the time.
void CompareInMemory(Table& table) {
  constexpr int kClientCore = 0;
  RunOn(kClientCore);
  const int cores = std::thread::hardware_concurrency() > 1 ? 2 : 1;
  for (int server_core = 0; server_core < cores; ++server_core) {
    const MemoryServer server(server_core);
    if (server.Port() == 0) throw std::runtime_error("the server does not start");
    for (const char* count : {"1000", "10000", "32767"}) {
      const char* place = server_core == kClientCore ? ", same core" : ", core of its own";
      Compare(table, std::string(count) + " from memory" + place, count, {server.Port(), {}});
    }
  }
}

void CompareWithDovecot(Table& table) {
  constexpr int kMessages = 10000;
  const TempFolder folder;
  const Certificate authority = MakeAuthority("Bench");
  const Certificate certificate =
      MakeCertificate({.name = "bench", .alternative_names = "IP:127.0.0.1"}, &authority);
  folder.Write("authorities", ToPem(authority));
  Dovecot server({{"anna", kPassword}}, ToPem(certificate) + KeyToPem(certificate));
  for (int i = 1; i <= kMessages; ++i) server.Deliver("anna", SampleMail(i));
  RunBareLoop(server.Port(), "anna", kPassword, 0);  // the server builds its index
  Compare(table, "10000 from Dovecot", "anna", {server.Port(), {}});
  Compare(table, "10000 from Dovecot, TLS", "anna", {server.TlsPort(), folder / "authorities"});
}

int Main(const std::vector<std::string>& arguments) {
  if (arguments.size() == 4 && arguments[0] == "--child") {
    const CheckResult result =
        RunCheck(arguments[1], {static_cast<uint16_t>(std::stoi(arguments[2])), arguments[3]});
    std::printf("%f %f %f %d\n", result.cost.wall_seconds, result.cost.processor_seconds,
                result.megabytes, result.messages);
    return 0;
  }
  const bool dovecot = arguments == std::vector<std::string>{"--dovecot"};
  if (!dovecot && !arguments.empty()) return 2;
  Table table("A check beside a bare loop", "messages",
              {"bare s", "check s", "ratio", "bare CPU s", "check CPU s", "fetched MB", "grew MB"});
  dovecot ? CompareWithDovecot(table) : CompareInMemory(table);
  return 0;
}

}  // namespace
}  // namespace vesko

int main(int count, char** arguments) {
  try {
    return vesko::Main(std::vector<std::string>(arguments + 1, arguments + count));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
