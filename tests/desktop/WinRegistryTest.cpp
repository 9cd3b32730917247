#include <gtest/gtest.h>
#include <windows.h>

#include "desktop/RegistryFixture.h"
#include "desktop/windows/WindowsDesktop.h"
#include "support/Beside.h"

namespace vesko {
namespace {

using namespace std::string_literals;

constexpr char kKey[] = "Software\\K";

std::string Get(Registry& registry, std::string_view name) {
  RegistryKey key(registry);
  uint32_t type = 0;
  std::string data = "none";
  key.Open(kCurrentUser, kKey, kKeyQueryValue);
  registry.QueryValue(key.Handle(), name, type, data);
  return data;
}

void Put(Registry& registry, std::string_view name, std::string_view text) {
  RegistryKey key(registry);
  ASSERT_EQ(key.Create(kCurrentUser, kKey), kStatusSuccess);
  ASSERT_EQ(registry.SetValue(key.Handle(), name, kRegSz, text), kStatusSuccess);
}

/// The two are one for whoever is given no code page, whatever the registry names for the system's
/// next start.
TEST(WinRegistryTest, UsesTheCodePageOfTheProcessOrTheOneGiven) {
  const TempFolder folder;
  const auto own = MakeTestRegistry(folder);
  const auto korean = MakeWinRegistry(949);
  const auto utf8 = MakeWinRegistry(kCodePageUtf8);
  Put(*korean, "\xB0\xA1", "\xC7\xD1\0"s);
  EXPECT_EQ(Get(*utf8, "\xEA\xB0\x80"), "\xED\x95\x9C\0"s);
  EXPECT_EQ(Get(*MakeWinRegistry(99999), "\xB0\xA1"), Get(*own, "\xB0\xA1"));

  const bool is_korean = GetACP() == 949;
  EXPECT_EQ(Get(*own, "\xB0\xA1"), is_korean ? "\xC7\xD1\0"s : "none");
  RegistryKey nls(*own);
  ASSERT_EQ(nls.Create(kLocalMachine, "SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage"), 0);
  ASSERT_EQ(own->SetValue(nls.Handle(), "ACP", kRegSz, "65001\0"s), 0);
  EXPECT_EQ(MakeWindowsDesktop()->GetServices().locale.CodePage(), static_cast<int>(GetACP()));
  EXPECT_EQ(MakeWindowsDesktop(932)->GetServices().locale.CodePage(), 932);
}

/// Two bytes for a character, and a reference: what the system says of the size is of characters.
TEST(WinRegistryTest, ExpandsTextOfDoubleByteCharacters) {
  SetEnvironmentVariableW(L"VESKO_WIDE", std::wstring(3000, 0xAC00).c_str());
  const auto registry = MakeWinRegistry(949);
  EXPECT_EQ(registry->ExpandEnvironment("100% \xB9\xAB\xB7\xE1\r\n50% \xC7\xD2\xC0\xCE"),
            "100% \xB9\xAB\xB7\xE1\r\n50% \xC7\xD2\xC0\xCE");
  const std::string expanded = registry->ExpandEnvironment("%VESKO_WIDE%");
  EXPECT_EQ(expanded.size(), 6000u);
  EXPECT_EQ(expanded.substr(0, 4), "\xB0\xA1\xB0\xA1");
}

/// The system takes another thread for another owner of a lock, as it does a process.
TEST(WinRegistryTest, ATransactionKeepsOtherProcessesOut) {
  const TempFolder folder;
  const auto first = MakeTestRegistry(folder);
  auto transaction = first->BeginTransaction(kCurrentUser, TransactionKind::kWrite);
  std::string seen;
  {
    const Beside other([&] {
      const auto second = MakeWinRegistry();
      const auto moment = second->BeginTransaction(kLocalMachine, TransactionKind::kRead);
      seen = Get(*second, "v");
    });
    for (int n = 0; n < 200; ++n) Put(*first, "v", n < 199 ? "half\0"s : "whole\0"s);
    transaction.reset();
  }
  EXPECT_EQ(seen, "whole\0"s);
}

TEST(WinRegistryTest, ATransactionOfAProcessThatDiedIsOver) {
  {
    const Beside dead([] {
      const auto mutex = CreateMutexW(nullptr, FALSE, L"Local\\VeskoEx settings");
      WaitForSingleObject(mutex, INFINITE);  // and never lets go, nor closes it
    });
  }
  const TempFolder folder;
  const auto registry = MakeTestRegistry(folder);
  const auto transaction = registry->BeginTransaction(kCurrentUser, TransactionKind::kWrite);
  Put(*registry, "v", "x");
  EXPECT_EQ(transaction->Commit(), kStatusSuccess);
}

}  // namespace
}  // namespace vesko
