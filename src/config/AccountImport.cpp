#include "config/AccountImport.h"

#include "base/RunTimeError.h"
#include "message/mmFile.h"

namespace vesko {
namespace {

constexpr TextView kAccountManager = u"SOFTWARE\\Microsoft\\Internet Account Manager\\Accounts";
constexpr TextView kMailtoCommand = u"SOFTWARE\\Classes\\mailto\\shell\\open\\command";
constexpr TextView kProgramEnd = u".exe";

ForeignAccount ReadAccount(HiveValues& values, const Text& key) {
  ForeignAccount account;
  account.name = values.ReadText(key, u"Account Name", kRegSz);
  account.server = values.ReadText(key, u"POP3 Server", kRegSz);
  account.user = values.ReadText(key, u"POP3 User Name", kRegSz);
  IgnoreErrors(
      [&] { account.port = ToInt32(values.Read(key, u"POP3 Port", kRegDword, account.port)); });
  return account;
}

/// The command of mailto links; nothing where the key or its unnamed value is missing.
std::optional<Text> MailtoCommand(HiveValues& values) {
  const Text key(kMailtoCommand);
  if (IsEmpty(values.Read(key, {}, kRegBinary, {}))) return std::nullopt;
  return values.ReadText(key, {}, kRegExpandSz);
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

std::optional<ForeignAccount> ImportAccount(int32_t k, HiveValues& user_values, Shell& shell) {
  if (!user_values.KeyExists(NumberedKey(kAccountManager, 1))) return shell.DesktopMailAccount(k);
  ForeignAccount account = ReadAccount(user_values, NumberedKey(kAccountManager, k));
  if (account.name.empty()) return std::nullopt;
  return account;
}

Text DefaultMailClient(HiveValues& machine_values, const Locale& locale, Shell& shell) {
  const auto command = MailtoCommand(machine_values);
  const Text program = command ? ProgramOf(*command, locale) : shell.DesktopMailClient();
  return FileExists(shell, program) ? program : Text();
}

}  // namespace vesko
