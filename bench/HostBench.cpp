// A host that measures the component as it is built for the system it runs on: how long the library
// takes to load, and what a check of so many messages costs from the call until the list opens.
// Or, beside it, what a bare loop costs on the same system.
//
//   vesko_bench_host <port> <messages> <library>   load milliseconds, wall and processor seconds
//   vesko_bench_host <port> <messages>             wall and processor seconds of the bare loop

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

#include "BareLoop.h"
#include "HostSystem.h"
#include "VeskoEx/VeskoEx.h"
#include "config/mRegistry.h"
#include "config/mmEncrypt.h"

namespace vesko {
namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* kPassword = "secret";

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Meter {
  explicit Meter(HostSystem& measured) : system(measured) {}

  void Report() const {
    std::printf("%.4f %.4f\n", SecondsSince(start), system.ProcessorSeconds() - processor_start);
  }

  HostSystem& system;
  double processor_start = system.ProcessorSeconds();
  Clock::time_point start = Clock::now();
};

void SeedAccount(HostSystem& system, const std::string& user, int32_t port) {
  const auto registry = system.NewRegistry();
  const auto locale = system.NewLocale();
  const auto shell = system.NewShell();
  Configuration configuration;
  configuration.AddAccount({u"Bench", u"127.0.0.1", FromAscii(user),
                            Encrypt(FromAscii(kPassword), *locale), Decimal(port), u"1"});
  mRegistry(*registry, *locale, *shell).Save(configuration);
}

void Require(bool condition, const char* otherwise) {
  if (!condition) throw std::runtime_error(otherwise);
}

using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);

_cVeskoEx* Create(GetClassObject get) {
  void* factory = nullptr;
  Require(SUCCEEDED(get(CLSID_cVeskoEx, IID_IClassFactory, &factory)), "no class factory");
  auto* classes = static_cast<IClassFactory*>(factory);
  void* object = nullptr;
  classes->CreateInstance(nullptr, IID__cVeskoEx, &object);
  classes->Release();
  Require(object != nullptr, "no object");
  return static_cast<_cVeskoEx*>(object);
}

void MeasureCheck(HostSystem& system, const char* library) {
  const auto start = Clock::now();
  void* entry = system.Load(library, "DllGetClassObject");
  Require(entry != nullptr, "the library cannot be loaded");
  std::printf("%.2f ", SecondsSince(start) * 1000);
  _cVeskoEx* mail = Create(reinterpret_cast<GetClassObject>(entry));
  const Meter meter(system);
  system.CloseLists([&] { meter.Report(); });
  mail->CheckMail();
  mail->Release();
}

int Main(int count, char** arguments) {
  if (count < 3 || count > 4) return 2;
  const int port = std::atoi(arguments[1]);
  const auto system = MakeHostSystem();
  if (count == 4) {
    SeedAccount(*system, arguments[2], port);
    MeasureCheck(*system, arguments[3]);
  } else {
    const Meter meter(*system);
    RunBareLoop(static_cast<uint16_t>(port), arguments[2], kPassword, Configuration().DownLines);
    meter.Report();
  }
  return 0;
}

}  // namespace
}  // namespace vesko

int main(int count, char** arguments) {
  try {
    return vesko::Main(count, arguments);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
