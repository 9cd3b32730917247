#include <windows.h>

#include "desktop/SocketFixture.h"
#include "desktop/windows/WindowsDesktop.h"

namespace vesko {
namespace {

EventSources& Sources() {
  static EventSources sources;
  return sources;
}

}  // namespace

std::unique_ptr<Socket> MakeTestSocket(const Locale& locale, const std::string& certificate_file,
                                       std::vector<int32_t> tls_ports) {
  return MakeWinSocket(locale, Sources(), certificate_file, std::move(tls_ports));
}

bool TurnEventLoop(std::chrono::milliseconds longest_wait) {
  MSG message;
  const auto milliseconds = static_cast<DWORD>(longest_wait.count());
  if (Sources().Deliver() || Sources().DeliverUnlessMessage(milliseconds)) return true;
  if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return false;
  DispatchMessageW(&message);
  return true;
}

size_t OpenDescriptors() {
  DWORD count = 0;
  GetProcessHandleCount(GetCurrentProcess(), &count);
  return count;
}

// Wine may not.
bool SystemTellsResets() {
  return GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version") == nullptr;
}

}  // namespace vesko
