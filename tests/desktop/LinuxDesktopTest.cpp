#include <gtest/gtest.h>

#include <cstring>
#include <thread>

#include "VeskoEx/Automation.h"
#include "desktop/linux/LinuxDesktop.h"
#include "support/ErrorOf.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

TEST(LinuxDesktopTest, TheHivesNameTheCodePageTheUsersFirst) {
  const struct {
    const char* user;     // ACP of the hive, nullptr for none
    const char* machine;  // likewise
    uint32_t type;
    int option;
    int code_page;
  } rows[] = {
      {nullptr, "949", kRegSz, 0, 949},
      {"932", "949", kRegSz, 0, 932},
      {"950", nullptr, kRegSz, 0, 950},
      {"-1", "949", kRegSz, 0, 949},
      {"949", "949", kRegSz, 932, 932},
      {nullptr, "UTF", kRegSz, 0, HostCodePage()},
      {"949", "949", kRegBinary, 0, HostCodePage()},
  };
  for (const auto& row : rows) {
    const TempFolder folder;
    const auto registry = MakeSqliteRegistry(folder / "user", folder / "machine");
    for (const auto& [root, acp] :
         {std::pair(kCurrentUser, row.user), std::pair(kLocalMachine, row.machine)}) {
      if (acp == nullptr) continue;
      RegistryKey key(*registry);
      key.Create(root, "SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage");
      registry->SetValue(key.Handle(), "ACP", row.type, std::string_view(acp, strlen(acp) + 1));
    }
    const auto desktop = MakeLinuxDesktop({.user_hive_folder = folder / "user",
                                           .machine_hive_folder = folder / "machine",
                                           .locale_name = "en_GB",
                                           .code_page = row.option,
                                           .certificate_file = ""});
    EXPECT_EQ(desktop->GetServices().locale.CodePage(), row.code_page) << &row - rows;
  }
}

TEST(LinuxDesktopTest, OnlyTheThreadOfTheWindowsCanHaveOne) {
  const auto first = MakeLinuxDesktop();
  int32_t error = 0;
  std::thread([&] { error = ErrorOf([] { MakeLinuxDesktop(); }); }).join();
  EXPECT_EQ(error, RPC_E_WRONG_THREAD);
}

}  // namespace
}  // namespace vesko
