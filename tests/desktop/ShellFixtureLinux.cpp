#include "desktop/ShellFixture.h"
#include "desktop/linux/LinuxDesktop.h"

namespace vesko {

std::unique_ptr<Shell> MakeTestShell(const TempFolder& folder) {
  ShellFolders folders;
  folders.config_home = folder / "conf";
  folders.data_home = folder / "data";
  return MakeLinuxShell(folders);
}

std::filesystem::path OwnProgram() { return std::filesystem::read_symlink("/proc/self/exe"); }

}  // namespace vesko
