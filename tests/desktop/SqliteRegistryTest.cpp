#include <gtest/gtest.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <random>

#include "desktop/linux/LinuxDesktop.h"
#include "support/TempFolder.h"

namespace vesko {
namespace {

constexpr char kKey[] = "Software\\Vesko";
constexpr char kFile[] = "user/registry.db";

std::unique_ptr<Registry> RegistryIn(const TempFolder& folder) {
  return MakeSqliteRegistry(folder / "user", folder / "machine");
}

int32_t Put(Registry& registry, std::string_view name, std::string_view text,
            int32_t root = kCurrentUser) {
  KeyHandle key = kNoKey;
  if (int32_t status = registry.CreateKey(root, kKey, key)) return status;
  return registry.SetValue(key, name, kRegSz, text);
}

std::string Get(Registry& registry, std::string_view name, int32_t root = kCurrentUser) {
  KeyHandle key = kNoKey;
  uint32_t type = 0;
  std::string data;
  int32_t status = registry.OpenKey(root, kKey, kKeyQueryValue, key);
  if (!status) status = registry.QueryValue(key, name, type, data);
  return status ? "status " + std::to_string(status) : data;
}

/// Writes the same text under many names, as one unit.
int32_t SaveAll(Registry& registry, const std::string& text, int names = 50) {
  auto transaction = registry.BeginTransaction(kCurrentUser, TransactionKind::kWrite);
  for (int n = 0; n < names; ++n) Put(registry, std::to_string(n), text);
  return transaction->Commit();
}

/// The text under all names; "torn" where they differ.
std::string LoadAll(Registry& registry, int names = 50) {
  std::string text = Get(registry, "0");
  for (int n = 1; n < names; ++n) {
    if (Get(registry, std::to_string(n)) != text) return "torn";
  }
  return text;
}

/// Runs a body in a child process, which ends with what it returns.
pid_t InChild(const std::function<int()>& body) {
  pid_t child = fork();
  if (child == 0) _exit(body());
  return child;
}

int ResultOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

mode_t ModeOf(const std::string& path) {
  return static_cast<mode_t>(std::filesystem::status(path).permissions());
}

TEST(SqliteRegistry, ReadingCreatesNothing) {
  TempFolder folder;
  auto registry = RegistryIn(folder);
  auto transaction = registry->BeginTransaction(kCurrentUser, TransactionKind::kRead);
  KeyHandle root = kNoKey;
  EXPECT_EQ(Get(*registry, "v"), "status 2");
  EXPECT_EQ(registry->OpenKey(kLocalMachine, "", kKeyQueryValue, root), kStatusFileNotFound);
  EXPECT_EQ(registry->OpenKey(kClassesRoot, "A", kKeyQueryValue, root), kStatusInvalidHandle);
  transaction.reset();
  EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

TEST(SqliteRegistry, StrayPercentSignsAreNoReferences) {
  setenv("VESKO_A", "alpha", 1);
  EXPECT_EQ(RegistryIn({})->ExpandEnvironment("%=50% of %VESKO_A%"), "%=50% of alpha");
}

TEST(SqliteRegistry, FilesAreTheOwnersAlone) {
  TempFolder folder;
  mode_t mask = umask(0);
  auto registry = MakeSqliteRegistry(folder / "a/b/user", folder / "machine");
  EXPECT_EQ(Put(*registry, "v", "x"), kStatusSuccess);
  umask(mask);
  for (auto* made : {"a", "a/b", "a/b/user"}) EXPECT_EQ(ModeOf(folder / made), 0700u) << made;
  for (auto* suffix : {"", "-wal", "-shm"}) {
    EXPECT_EQ(ModeOf(folder / "a/b/user/registry.db" + suffix), 0600u) << suffix;
  }
  EXPECT_FALSE(std::filesystem::exists(folder / "machine"));
}

TEST(SqliteRegistry, WhatIsOpenToOthersIsClosedWhenTheHiveIsOpened) {
  TempFolder folder;
  auto holder = RegistryIn(folder);  // keeps the logs in being
  ASSERT_EQ(Put(*holder, "v", "x"), kStatusSuccess);
  const char* const suffixes[] = {"", "-wal", "-shm"};
  for (mode_t mode : {0644, 0666, 0640}) {
    for (bool writing : {false, true}) {
      chmod((folder / "user").c_str(), 0777);
      for (auto* suffix : suffixes) chmod((folder / kFile + suffix).c_str(), mode);
      auto registry = RegistryIn(folder);
      EXPECT_EQ(writing ? Put(*registry, "v", "x") : kStatusSuccess, kStatusSuccess);
      EXPECT_EQ(Get(*registry, "v"), "x");
      EXPECT_EQ(ModeOf(folder / "user"), 0700u);
      for (auto* suffix : suffixes) EXPECT_EQ(ModeOf(folder / kFile + suffix), 0600u) << suffix;
    }
  }
}

/// Holds the user's hive as a program does that lets nobody read it.
std::unique_ptr<sqlite3, int (*)(sqlite3*)> Hold(const TempFolder& folder) {
  sqlite3* connection = nullptr;
  sqlite3_open((folder / kFile).c_str(), &connection);
  constexpr auto kHold = "PRAGMA locking_mode=EXCLUSIVE; BEGIN EXCLUSIVE; DELETE FROM entries";
  EXPECT_EQ(sqlite3_exec(connection, kHold, nullptr, nullptr, nullptr), SQLITE_OK);
  return {connection, sqlite3_close};
}

TEST(SqliteRegistry, AHeldHiveIsWaitedForFiveSecondsInAll) {
  using std::chrono::milliseconds;
  TempFolder folder;
  ASSERT_EQ(SaveAll(*RegistryIn(folder), "x"), kStatusSuccess);
  auto holder = Hold(folder);
  milliseconds waited{0};
  milliseconds held = milliseconds::max();
  const auto pass_time = [&](milliseconds time) {
    waited += time;
    if (waited > held) holder.reset();
    return time;
  };
  auto registry = MakeSqliteRegistry(folder / "user", folder / "machine", pass_time);
  const auto busy = [&] { return Get(*registry, "0") == "status " + std::to_string(kStatusBusy); };
  {
    auto machine = registry->BeginTransaction(kLocalMachine, TransactionKind::kRead);
    for (auto kind : {TransactionKind::kRead, TransactionKind::kWrite}) {
      auto user = registry->BeginTransaction(kCurrentUser, kind);
      for (int n = 0; n < 20; ++n) EXPECT_TRUE(busy());
      EXPECT_EQ(Put(*registry, "v", "x"), kStatusBusy);
      EXPECT_EQ(user->Commit(), kStatusBusy);
    }
  }
  EXPECT_TRUE(busy());
  EXPECT_EQ(SaveAll(*registry, "y"), kStatusBusy);
  EXPECT_EQ(waited, milliseconds{5000}) << "it has not answered since";

  held = waited + milliseconds{2000};
  registry = MakeSqliteRegistry(folder / "user", folder / "machine", pass_time);
  EXPECT_EQ(LoadAll(*registry), "x");
  EXPECT_LT(waited, held + milliseconds{100});
}

TEST(SqliteRegistry, ErasedDataLeaveTheFile) {
  TempFolder folder;
  {
    auto registry = RegistryIn(folder);
    EXPECT_EQ(Put(*registry, "v", "unique-secret-text"), kStatusSuccess);
    EXPECT_EQ(Put(*registry, "v", ""), kStatusSuccess);
  }
  EXPECT_EQ(folder.Read(kFile).find("unique-secret"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(folder / kFile + "-wal"));
}

/// What stands where the user's hive should be, and the least that a write must not do: succeed.
TEST(SqliteRegistry, ObstaclesAreStatusCodesAndSpareTheOtherHive) {
  const std::pair<const char*, std::function<void(const TempFolder&)>> rows[] = {
      {"folder is a file", [](auto& folder) { folder.Write("user", "x"); }},
      {"file is a folder", [](auto& folder) { folder.Write("user/registry.db/x", "x"); }},
      {"garbage", [](auto& folder) { folder.Write(kFile, std::string(5000, 'g')); }},
      {"later version",
       [](auto& folder) {
         Put(*RegistryIn(folder), "v", "x");
         std::string content = folder.Read(kFile);
         content[63] = 9;  // the lowest byte of the version that the user of the file gives
         folder.Write(kFile, content);
       }},
  };
  for (const auto& [name, build] : rows) {
    TempFolder folder;
    build(folder);
    auto registry = RegistryIn(folder);
    EXPECT_NE(SaveAll(*registry, "x"), kStatusSuccess) << name;
    EXPECT_NE(Put(*registry, "v", "x"), kStatusSuccess) << name;
    EXPECT_EQ(Get(*registry, "v").find("status "), 0u) << name;
    EXPECT_EQ(Put(*registry, "v", "y", kLocalMachine), kStatusSuccess) << name;
    EXPECT_EQ(Get(*registry, "v", kLocalMachine), "y") << name;
  }
}

TEST(SqliteRegistry, DamagedFilesNeverCrash) {
  TempFolder folder;
  SaveAll(*RegistryIn(folder), std::string(300, 'x'));
  const std::string whole = folder.Read(kFile);
  std::mt19937 random(1);
  for (int round = 0; round < 60; ++round) {
    std::string damaged = whole;
    for (int hits = 0; hits < 40; ++hits) {
      damaged[100 + random() % (damaged.size() - 100)] = static_cast<char>(random());
    }
    if (round % 3 == 0) damaged.resize(random() % damaged.size());
    folder.Write(kFile, damaged);
    auto registry = RegistryIn(folder);
    LoadAll(*registry);
    SaveAll(*registry, "y");
    registry->DeleteKey(kCurrentUser, kKey);
  }
}

TEST(SqliteRegistry, OthersMayReadAHiveThatTheyCannotWrite) {
  TempFolder folder;
  ASSERT_EQ(Put(*RegistryIn(folder), "v", "machine-wide", kLocalMachine), kStatusSuccess);
  chmod(folder.Path().c_str(), 0755);
  chmod((folder / "machine").c_str(), 0555);
  chmod((folder / "machine/registry.db").c_str(), 0444);
  int result = ResultOf(InChild([&] {
    if (geteuid() == 0 && setuid(65534) != 0) return 1;
    auto registry = RegistryIn(folder);
    if (Get(*registry, "v", kLocalMachine) != "machine-wide") return 2;
    if (Put(*registry, "v", "mine", kLocalMachine) != kStatusAccessDenied) return 3;
    if (Get(*registry, "v", kLocalMachine) != "machine-wide") return 4;
    return 0;
  }));
  chmod((folder / "machine").c_str(), 0755);
  EXPECT_EQ(result, 0);
}

TEST(SqliteRegistry, AFullDiskLeavesTheLastSaveWhole) {
  TempFolder folder;
  ASSERT_EQ(SaveAll(*RegistryIn(folder), "before"), kStatusSuccess);
  int result = ResultOf(InChild([&] {
    signal(SIGXFSZ, SIG_IGN);
    rlimit limit{100'000, 100'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    auto registry = RegistryIn(folder);
    if (SaveAll(*registry, std::string(50'000, 'x')) == kStatusSuccess) return 1;
    if (LoadAll(*registry) != "before") return 2;
    return SaveAll(*registry, "short") == kStatusSuccess ? 0 : 3;
  }));
  EXPECT_EQ(result, 0);
  EXPECT_EQ(LoadAll(*RegistryIn(folder)), "short");
}

/// The child tells after each save how far it is; the parent kills it in the middle of a later one.
TEST(SqliteRegistry, KilledAtAnyMomentTheLastSaveIsWhole) {
  TempFolder folder;
  std::mt19937 random(1);
  for (int round = 0; round < 25; ++round) {
    int channel[2];
    ASSERT_EQ(pipe(channel), 0);
    pid_t child = InChild([&] {
      auto registry = RegistryIn(folder);
      for (unsigned char n = 1;; ++n) {
        SaveAll(*registry, std::to_string(round * 1000 + n));
        if (write(channel[1], &n, 1) != 1) return 1;
      }
    });
    unsigned char told = 0;
    for (unsigned saves = 1 + random() % 3; saves > 0; --saves) {
      ASSERT_EQ(read(channel[0], &told, 1), 1);
    }
    random.discard(random() % 1'000'000);  // some part of a save later
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(channel[0]);
    close(channel[1]);
    std::string found = LoadAll(*RegistryIn(folder));
    ASSERT_NE(found, "torn");
    ASSERT_GE(std::atoi(found.c_str()), round * 1000 + told);
  }
}

/// All start at once, when the last writing end of their channel closes: most faults of sharing are
/// in the making of the hive.
TEST(SqliteRegistry, ProcessesShareAHiveFromItsCreationOn) {
  const std::string names[] = {"a", "b", "c"};
  for (int round = 0; round < 20; ++round) {
    TempFolder folder;
    int gate[2];
    ASSERT_EQ(pipe(gate), 0);
    std::vector<pid_t> children;
    for (const std::string& who : names) {
      children.push_back(InChild([&] {
        char nothing;
        close(gate[1]);
        if (read(gate[0], &nothing, 1) != 0) return 1;
        auto registry = RegistryIn(folder);
        for (int n = 0; n < 5; ++n) {
          if (Put(*registry, who + std::to_string(n), who)) return 2;
          if (SaveAll(*registry, who, 20)) return 3;
          auto moment = registry->BeginTransaction(kCurrentUser, TransactionKind::kRead);
          if (LoadAll(*registry, 20) == "torn") return 4;
        }
        return 0;
      }));
    }
    for (int end : gate) close(end);
    for (pid_t child : children) ASSERT_EQ(ResultOf(child), 0);
    auto registry = RegistryIn(folder);
    for (const std::string& who : names) {
      for (int n = 0; n < 5; ++n) ASSERT_EQ(Get(*registry, who + std::to_string(n)), who);
    }
  }
}

}  // namespace
}  // namespace vesko
