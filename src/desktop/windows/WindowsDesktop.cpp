#include "desktop/windows/WindowsDesktop.h"

#include <windows.h>

#include <charconv>
#include <string>

#include "desktop/common/SteadyClock.h"

namespace vesko {
namespace {

constexpr char kCodePageKey[] = "SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage";

/// The code page that the registry names, which takes effect for us at once and for the system
/// after its next start; else the system's.
int ChooseCodePage(Registry& registry) {
  const int host = static_cast<int>(GetACP());
  KeyHandle key = kNoKey;
  if (registry.OpenKey(kLocalMachine, kCodePageKey, kKeyQueryValue, key) != kStatusSuccess) {
    return host;
  }
  uint32_t type = 0;
  std::string digits;
  const int32_t status = registry.QueryValue(key, "ACP", type, digits);
  registry.CloseKey(key);
  int named = 0;
  if (status == kStatusSuccess && type == kRegSz) {
    std::from_chars(digits.data(), digits.data() + digits.size(), named);
  }
  return named > 0 && IsValidCodePage(static_cast<UINT>(named)) ? named : host;
}

class WindowsDesktop final : public Desktop {
 public:
  WindowsDesktop()
      : registry_(MakeWinRegistry()),
        locale_(MakeWinLocale(ChooseCodePage(*registry_))),
        sound_(MakeWinSound(*locale_)),
        shell_(MakeWinShell()),
        socket_(MakeWinSocket(*locale_, sources_)),
        toolkit_(MakeWinToolkit(sources_)) {}

  const Services& GetServices() const override { return services_; }
  Toolkit& GetToolkit() override { return *toolkit_; }

 private:
  EventSources sources_;
  std::unique_ptr<Registry> registry_;
  std::unique_ptr<Locale> locale_;
  std::unique_ptr<Sound> sound_;
  std::unique_ptr<Shell> shell_;
  std::unique_ptr<Socket> socket_;
  std::unique_ptr<Toolkit> toolkit_;
  SteadyClock clock_;
  Services services_{*locale_, *registry_, *shell_, *sound_, clock_, toolkit_->GetPump(), *socket_};
};

}  // namespace

std::unique_ptr<Desktop> MakeWindowsDesktop() { return std::make_unique<WindowsDesktop>(); }

}  // namespace vesko
