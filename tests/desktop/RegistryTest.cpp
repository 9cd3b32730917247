#include <gtest/gtest.h>

#include <algorithm>

#include "desktop/RegistryFixture.h"

namespace vesko {
namespace {

using namespace std::string_literals;

class RegistryTest : public testing::TestWithParam<RegistryPort> {
 protected:
  KeyHandle Create(std::string_view path, int32_t root = kCurrentUser) {
    KeyHandle key = kNoKey;
    EXPECT_EQ(registry_->CreateKey(root, path, key), kStatusSuccess) << path;
    return key;
  }
  int32_t Open(std::string_view path, int32_t root = kCurrentUser) {
    KeyHandle key = kNoKey;
    return registry_->OpenKey(root, path, kKeyQueryValue, key);
  }
  std::string Get(KeyHandle key, std::string_view name) {
    uint32_t type = 0;
    std::string data;
    int32_t status = registry_->QueryValue(key, name, type, data);
    return status == kStatusSuccess ? data : "status " + std::to_string(status);
  }
  std::vector<std::string> Names(KeyHandle key,
                                 int32_t (Registry::*next)(KeyHandle, uint32_t, std::string&)) {
    std::vector<std::string> names;
    std::string name;
    int32_t status;
    while ((status = (*registry_.*next)(key, static_cast<uint32_t>(names.size()), name)) == 0) {
      names.push_back(name);
    }
    EXPECT_EQ(status, kStatusNoMoreItems);
    std::sort(names.begin(), names.end());
    return names;
  }

  TempFolder folder_;
  std::unique_ptr<Registry> registry_ = GetParam().make(folder_);
};

TEST_P(RegistryTest, KeepsTypesAndBytes) {
  const std::pair<uint32_t, std::string> rows[] = {{kRegSz, "plain\0\0\0"s},
                                                   {kRegExpandSz, "%A%\0"s},
                                                   {kRegBinary, ""},
                                                   {kRegBinary, "\0\xFF\x80"s},
                                                   {kRegDword, "\1\0\0\0"s},
                                                   {77, "?"},
                                                   {kRegSz, "\xB0\xA1\xC7\xD1\0"s},
                                                   {kRegSz, std::string(200'000, 'x') + '\0'}};
  KeyHandle key = Create("Software\\K");
  for (const auto& [type, data] : rows) {
    ASSERT_EQ(registry_->SetValue(key, "v", type, data), kStatusSuccess);
    uint32_t got_type = 0;
    std::string got;
    ASSERT_EQ(registry_->QueryValue(key, "v", got_type, got), kStatusSuccess);
    EXPECT_EQ(got_type, type);
    EXPECT_EQ(got, data);
  }
  ASSERT_EQ(registry_->SetValue(key, "", kRegSz, "unnamed\0"s), kStatusSuccess);
  EXPECT_EQ(Get(key, ""), "unnamed\0"s);
  EXPECT_EQ(Names(key, &Registry::EnumValue), (std::vector<std::string>{"", "v"}));
  EXPECT_EQ(registry_->DeleteValue(key, "V"), kStatusSuccess);
  EXPECT_EQ(Names(key, &Registry::EnumValue), std::vector<std::string>{""});
}

TEST_P(RegistryTest, NamesCompareWithoutCaseAndKeepTheirSpelling) {
  KeyHandle key = Create("Soft Ware\\Kee\xB0\xA1");
  ASSERT_EQ(registry_->SetValue(key, "Down Lines", kRegDword, "1"), kStatusSuccess);
  KeyHandle same = Create("sOFT wARE\\KEE\xB0\xA1");
  ASSERT_EQ(registry_->SetValue(same, "DOWN lines", kRegSz, "2\0"s), kStatusSuccess);
  EXPECT_EQ(Get(key, "down LINES"), "2\0"s);
  EXPECT_EQ(Names(key, &Registry::EnumValue), std::vector<std::string>{"Down Lines"});
  EXPECT_EQ(Names(Create("SOFT WARE"), &Registry::EnumKey),
            std::vector<std::string>{"Kee\xB0\xA1"});
  EXPECT_EQ(Open("Soft Ware\\Kee\xB0\xA2"), kStatusFileNotFound);
}

TEST_P(RegistryTest, CreatesParentsAndEnumeratesSubKeys) {
  Create("A\\B\\00000002");
  Create("A\\B\\00000001\\Deep");
  for (int i = 0; i < 3000; ++i) ASSERT_EQ(Open("A"), kStatusSuccess) << "handles never closed";
  EXPECT_EQ(Names(Create("A\\B"), &Registry::EnumKey),
            (std::vector<std::string>{"00000001", "00000002"}));
  EXPECT_EQ(Names(Create("A\\B\\00000002"), &Registry::EnumKey), std::vector<std::string>{});
  EXPECT_EQ(Open("A\\B", kLocalMachine), kStatusFileNotFound);
}

TEST_P(RegistryTest, RefusesWithStatusCodes) {
  KeyHandle key = Create("A\\B");
  std::string out = "untouched";
  uint32_t type = 99;
  auto& r = *registry_;
  const std::pair<int32_t, int32_t> rows[] = {
      {Open("A\\C"), kStatusFileNotFound},
      {r.CreateKey(12345, "A", key), kStatusInvalidHandle},
      {r.QueryValue(key, "missing", type, out), kStatusFileNotFound},
      {r.QueryValue(kNoKey, "v", type, out), kStatusInvalidHandle},
      {r.SetValue(kNoKey, "v", kRegSz, "x"), kStatusInvalidHandle},
      {r.DeleteKey(kCurrentUser, "A\\C"), kStatusFileNotFound},
      {r.DeleteKey(kCurrentUser, "A"), kStatusAccessDenied},
      {r.DeleteValue(key, "missing"), kStatusFileNotFound},
  };
  for (const auto& [status, expected] : rows)
    EXPECT_EQ(status, expected) << &status - &rows[0].first;
  EXPECT_EQ(out, "untouched");
  EXPECT_EQ(type, 99u);
  EXPECT_EQ(Open("A\\B"), kStatusSuccess);
}

TEST_P(RegistryTest, DeletedKeysTakeTheirValuesAlong) {
  KeyHandle stale = Create("A\\B");
  ASSERT_EQ(registry_->SetValue(stale, "v", kRegSz, "old"), kStatusSuccess);
  ASSERT_EQ(registry_->DeleteKey(kCurrentUser, "a\\b"), kStatusSuccess);
  EXPECT_EQ(Open("A\\B"), kStatusFileNotFound);
  EXPECT_NE(registry_->SetValue(stale, "v", kRegSz, "late"), kStatusSuccess);
  EXPECT_EQ(Open("A\\B"), kStatusFileNotFound);
  EXPECT_EQ(Get(Create("A\\B"), "v"), "status 2");
}

TEST_P(RegistryTest, TransactionsNestAndShowTheirOwnWrites) {
  {
    auto outer = registry_->BeginTransaction(kCurrentUser, TransactionKind::kWrite);
    EXPECT_EQ(Open("A"), kStatusFileNotFound);
    {
      auto inner = registry_->BeginTransaction(kCurrentUser, TransactionKind::kRead);
      registry_->SetValue(Create("A"), "v", kRegSz, "in\0"s);
    }
    registry_->SetValue(Create("B", kLocalMachine), "v", kRegSz, "other hive\0"s);
    EXPECT_EQ(outer->Commit(), kStatusSuccess);
  }
  EXPECT_EQ(Get(Create("A"), "v"), "in\0"s);
  EXPECT_EQ(Get(Create("B", kLocalMachine), "v"), "other hive\0"s);
}

TEST_P(RegistryTest, ExpandsEnvironmentReferences) {
  const std::pair<const char*, const char*> rows[] = {
      {"C:\\%VESKO_A%\\x", "C:\\alpha\\x"},
      {"<%VESKO_EMPTY%>", "<>"},
      {"%VESKO_MISSING%", "%VESKO_MISSING%"},
  };
  for (const auto& [text, expanded] : rows) {
    EXPECT_EQ(registry_->ExpandEnvironment(text), expanded);
  }
}

INSTANTIATE_TEST_SUITE_P(Ports, RegistryTest, testing::ValuesIn(kRegistryPorts),
                         [](const auto& port) { return port.param.name; });

}  // namespace
}  // namespace vesko
