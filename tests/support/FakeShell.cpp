#include "support/FakeShell.h"

#include "base/RunTimeError.h"

namespace vesko {

std::optional<uint32_t> FakeShell::FileAttributes(const Text& path) {
  if (folders.contains(path)) return kAttributeDirectory;
  if (files.contains(path)) return 0;
  return std::nullopt;
}

void FakeShell::Start(const Text& program) {
  if (unstartable.contains(program) || !files.contains(program)) throw RunTimeError(kFileNotFound);
  started.push_back(program);
}

Text FakeShell::DesktopMailClient() {
  ++desktop_mail_client_asked;
  return desktop_mail_client;
}

std::optional<ForeignAccount> FakeShell::DesktopMailAccount(int32_t k) {
  ++desktop_mail_account_asked;
  if (k < 1 || static_cast<size_t>(k) > desktop_mail_accounts.size()) return std::nullopt;
  return desktop_mail_accounts[static_cast<size_t>(k) - 1];
}

}  // namespace vesko
