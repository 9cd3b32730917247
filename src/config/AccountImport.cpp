#include "config/AccountImport.h"

#include "base/RunTimeError.h"
#include "message/mmFile.h"

namespace vesko {
namespace {

constexpr TextView kAccountManager = u"SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts";
constexpr TextView kMailtoCommand = u"SOFTWARE\\Classes\\mailto\\shell\\open\\command";
constexpr TextView kProgramEnd = u".exe";

bool KeyExists(cRegistry& registry, int32_t root, const Text& key) {
  registry.ClassKey = root;
  registry.SectionKey = key;
  return registry.KeyExists();
}

Text ReadText(cRegistry& registry, const Text& key, TextView name) {
  Text text;
  IgnoreErrors(
      [&] { text = ToText(ReadValue(registry, kCurrentUser, key, Text(name), kRegSz, Text())); });
  return text;
}

ForeignAccount ReadAccount(cRegistry& registry, const Text& key) {
  ForeignAccount account;
  account.name = ReadText(registry, key, u"Account Name");
  account.server = ReadText(registry, key, u"POP3 Server");
  account.user = ReadText(registry, key, u"POP3 User Name");
  IgnoreErrors([&] {
    account.port =
        ToInt32(ReadValue(registry, kCurrentUser, key, u"POP3 Port", kRegDword, account.port));
  });
  return account;
}

/// The command of mailto links; nothing where the key or its unnamed value is missing.
std::optional<Text> MailtoCommand(cRegistry& registry) {
  registry.ClassKey = kLocalMachine;
  registry.SectionKey = kMailtoCommand;
  registry.ValueKey.clear();
  registry.ValueType = static_cast<int32_t>(kRegExpandSz);
  registry.Default = Variant();
  Variant command = registry.Value();
  if (IsEmpty(command)) return std::nullopt;
  Text text;
  IgnoreErrors([&] { text = TrimNull(Trim(ToText(command))); });
  return text;
}

/// The program of a command: its arguments are dropped. Programs of another kind count as none.
Text ProgramOf(const Text& command, const Locale& locale) {
  Text program = ReplaceAll(command, u"\"", u"");
  size_t end = Find(locale.Fold(program), locale.Fold(kProgramEnd));
  if (end == Text::npos) return {};
  program.resize(end + kProgramEnd.size());
  return program;
}

}  // namespace

std::optional<ForeignAccount> ImportAccount(int32_t k, cRegistry& registry, Shell& shell) {
  if (!KeyExists(registry, kCurrentUser, NumberedKey(kAccountManager, 1))) {
    return shell.DesktopMailAccount(k);
  }
  ForeignAccount account = ReadAccount(registry, NumberedKey(kAccountManager, k));
  if (account.name.empty()) return std::nullopt;
  return account;
}

Text DefaultMailClient(cRegistry& registry, const Locale& locale, Shell& shell) {
  auto command = MailtoCommand(registry);
  Text program = command ? ProgramOf(*command, locale) : shell.DesktopMailClient();
  return FileExists(shell, program) ? program : Text();
}

}  // namespace vesko
