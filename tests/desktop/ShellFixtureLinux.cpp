#include "desktop/ShellFixture.h"
#include "desktop/linux/LinuxDesktop.h"

namespace vesko {

std::unique_ptr<Shell> MakeTestShell(const TempFolder& folder) {
  return MakeLinuxShell({folder / "mail"});
}

std::filesystem::path OwnProgram() { return std::filesystem::read_symlink("/proc/self/exe"); }

}  // namespace vesko
