// Settings that somebody else has written, and hives that are damaged.
//
// The content is a list of values, a line each: "<hive><type><account> <name>=<data>", with the
// escapes \0 and \xHH in the data; or, for damage, bytes that are laid over a sound hive.

#include <charconv>

#include "Fuzz.h"
#include "config/mRegistry.h"
#include "desktop/linux/LinuxDesktop.h"
#include "support/ErrorOf.h"
#include "support/FakeShell.h"
#include "support/MemoryRegistry.h"
#include "support/TempFolder.h"

namespace vesko::fuzz {
namespace {

constexpr std::string_view kRoot = "SOFTWARE\\Quarnel\\Config\\Email Accounts";
constexpr std::string_view kHiveFile = "user/registry.db";

std::string Unescape(const std::string& text) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    int code = 0;
    if (text[i] != '\\') {
      bytes += text[i];
    } else if (text.compare(i, 2, "\\0") == 0) {
      bytes += '\0';
      ++i;
    } else if (text.compare(i, 2, "\\x") == 0) {
      const char* digits = text.data() + i + 2;
      std::from_chars(digits, digits + std::min<size_t>(2, text.size() - i - 2), code, 16);
      bytes += static_cast<char>(code);
      i = std::min(i + 3, text.size());
    }
  }
  return bytes;
}

void Put(MemoryRegistry& registry, Input line) {
  const int32_t root = line.Choose(2) == 0 ? kCurrentUser : kLocalMachine;
  const auto type = static_cast<uint32_t>(line.Choose(10));
  const size_t account = line.Choose(4);
  line.Until(' ');
  std::string path(kRoot);
  if (account != 0) path += "\\0000000" + std::to_string(account - 1);
  const std::string name = line.Until('=');
  registry.Put(root, path, name, type, Unescape(line.Rest()));
}

std::vector<Text> Summary(const Configuration& settings) {
  std::vector<Text> summary = {Decimal(settings.DownLines), Decimal(settings.CheckInterval),
                               Decimal(settings.WaitTime), Decimal(settings.ManualChecking),
                               settings.SoundFile};
  for (int32_t n = 1; n <= settings.Accounts.Count(); ++n) {
    summary.push_back(settings.AccountAt(n).ToRecord());
  }
  for (const Text& word : settings.SpamSenders) summary.push_back(word);
  for (const Text& word : settings.SpamSubjects) summary.push_back(word);
  return summary;
}

std::vector<Text> Load(Registry& registry, const Locale& locale) {
  FakeShell shell;
  Configuration settings;
  mRegistry(registry, locale, shell).Load(settings);
  Expect(settings.Accounts.Count() <= 32767, "there is an end to accounts");
  return Summary(settings);
}

std::vector<Text> LoadSaveLoad(Registry& registry, const Locale& locale) {
  FakeShell shell;
  Configuration settings;
  mRegistry store(registry, locale, shell);
  store.Load(settings);
  store.Save(settings);
  return Load(registry, locale);
}

void LoadHostileValues(const Locale& locale, Input input) {
  MemoryRegistry registry;
  while (!input.AtEnd()) {
    const std::string line = input.Until('\n');
    Put(registry, {reinterpret_cast<const uint8_t*>(line.data()), line.size()});
  }
  Load(registry, locale);
  const std::vector<Text> saved = LoadSaveLoad(registry, locale);
  Expect(LoadSaveLoad(registry, locale) == saved, "what was saved once is saved the same again");
}

std::string SoundHive(const Locale& locale) {
  const TempFolder folder;
  {
    const auto registry = MakeSqliteRegistry(folder / "user", folder / "machine");
    LoadSaveLoad(*registry, locale);
  }
  return folder.Read(kHiveFile);
}

void LoadDamagedHive(const Locale& locale, Input input) {
  static const std::string sound = SoundHive(locale);
  Expect(!sound.empty(), "a hive has a file");
  std::string damaged = sound;
  while (!input.AtEnd()) {
    const size_t at = input.Choose(256) * 256 + input.Choose(256);
    for (char c : input.Until('|')) damaged[(at + 100) % damaged.size()] = c;
  }
  const TempFolder folder;
  folder.Write(kHiveFile, damaged);
  const auto registry = MakeSqliteRegistry(folder / "user", folder / "machine");
  Load(*registry, locale);
}

void Run(Input input) {
  const Locale& locale = LocaleAt(input.Choose(kLocales));
  if (input.Choose(16) == 15) {
    LoadDamagedHive(locale, input);
  } else {
    LoadHostileValues(locale, input);
  }
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
