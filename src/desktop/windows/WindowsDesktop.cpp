#include "desktop/windows/WindowsDesktop.h"

#include "desktop/common/SteadyClock.h"

namespace vesko {
namespace {

class WindowsDesktop final : public Desktop {
 public:
  explicit WindowsDesktop(int code_page)
      : registry_(MakeWinRegistry(code_page)),
        locale_(MakeWinLocale(code_page)),
        sound_(MakeWinSound()),
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

std::unique_ptr<Desktop> MakeWindowsDesktop(int code_page) {
  return std::make_unique<WindowsDesktop>(code_page);
}

}  // namespace vesko
