#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "base/Text.h"
#include "config/mRegistry.h"
#include "config/mmEncrypt.h"
#include "desktop/windows/WindowsDesktop.h"

// Sets the user's accounts to those of the sample server on this machine. Under Wine it is told the
// server's port, and the user is the private prefix's. Other accounts may be named instead of the
// sample's: each "user:password", where an empty password is one that is not stored.

namespace vesko {
namespace {

Account Sample(const std::string& account, int32_t port, const Locale& locale) {
  const size_t colon = std::min(account.find(':'), account.size());
  const Text user = FromAscii(account.substr(0, colon));
  const Text password = FromAscii(account.substr(std::min(colon + 1, account.size())));
  return {user, u"127.0.0.1", user, Encrypt(password, locale), Decimal(port), u"1"};
}

void Seed(int32_t port, const std::vector<std::string>& accounts) {
  const auto registry = MakeWinRegistry();
  const auto locale = MakeWinLocale(0);
  const auto shell = MakeWinShell();
  mRegistry store(*registry, *locale, *shell);
  Configuration configuration;
  store.Load(configuration);
  configuration.Accounts.Clear();
  for (const std::string& account : accounts) {
    configuration.AddAccount(Sample(account, port, *locale));
  }
  store.Save(configuration);
}

}  // namespace
}  // namespace vesko

int main(int count, char** arguments) {
  const int port = count > 1 ? std::atoi(arguments[1]) : 0;
  if (port < 1 || port > 65535) {
    std::fputs("usage: vesko-seed-accounts <port> [<user>:<password>...]\n", stderr);
    return 2;
  }
  std::vector<std::string> accounts(arguments + 2, arguments + count);
  if (accounts.empty()) accounts = {"minji:sample", "office:sample"};
  vesko::Seed(port, accounts);
  return 0;
}
