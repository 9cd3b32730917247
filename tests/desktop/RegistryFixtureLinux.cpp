#include <cstdlib>

#include "desktop/RegistryFixture.h"
#include "desktop/linux/LinuxDesktop.h"

namespace vesko {

std::unique_ptr<Registry> MakeTestRegistry(const TempFolder& folder) {
  setenv("VESKO_A", "alpha", 1);
  setenv("VESKO_EMPTY", "", 1);
  return MakeSqliteRegistry(folder / "user", folder / "machine");
}

}  // namespace vesko
