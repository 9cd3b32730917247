#include <gtest/gtest.h>

#include <thread>

#include "VeskoEx/Automation.h"
#include "desktop/linux/LinuxDesktop.h"
#include "support/ErrorOf.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

TEST(LinuxDesktopTest, TheMachinesRegistryNamesTheCodePage) {
  const struct {
    const char* acp;
    uint32_t type;
    int option;
    int code_page;
  } rows[] = {
      {"949", kRegSz, 0, 949},
      {"949", kRegSz, 932, 932},
      {"UTF", kRegSz, 0, HostCodePage()},
      {"949", kRegBinary, 0, HostCodePage()},
  };
  for (const auto& row : rows) {
    const TempFolder folder;
    const auto registry = MakeSqliteRegistry(folder.Path(), folder / "machine");
    KeyHandle key = kNoKey;
    registry->CreateKey(kLocalMachine, "SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage", key);
    registry->SetValue(key, "ACP", row.type, std::string_view(row.acp, 4));
    const auto desktop = MakeLinuxDesktop({.user_hive_folder = folder.Path(),
                                           .machine_hive_folder = folder / "machine",
                                           .locale_name = "en_GB",
                                           .code_page = row.option,
                                           .certificate_file = ""});
    EXPECT_EQ(desktop->GetServices().locale.CodePage(), row.code_page) << row.acp;
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
