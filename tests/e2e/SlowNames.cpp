#include "e2e/SlowNames.h"

#include <dlfcn.h>
#include <netdb.h>

#include <condition_variable>
#include <mutex>

namespace vesko {
namespace {

std::mutex mutex;
std::condition_variable changed;
std::string slow_host;

bool WaitIfSlow(const char* host) {
  std::unique_lock lock(mutex);
  if (!host || slow_host.empty() || host != slow_host) return false;
  changed.wait(lock, [] { return slow_host.empty(); });
  return true;
}

void SetSlow(const std::string& host) {
  std::lock_guard lock(mutex);
  slow_host = host;
  changed.notify_all();
}

}  // namespace

SlowName::SlowName(const std::string& host) { SetSlow(host); }
SlowName::~SlowName() { SetSlow({}); }

}  // namespace vesko

// Stands before the system's own in the search order of the dynamic linker.
extern "C" __attribute__((visibility("default"))) int getaddrinfo(const char* host,
                                                                  const char* service,
                                                                  const addrinfo* hints,
                                                                  addrinfo** result) {
  if (vesko::WaitIfSlow(host)) return EAI_NONAME;
  static const auto next =
      reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
  return next(host, service, hints, result);
}
