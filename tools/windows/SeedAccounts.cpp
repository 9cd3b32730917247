#include <cstdio>
#include <cstdlib>

#include "base/Text.h"
#include "config/mRegistry.h"
#include "config/mmEncrypt.h"
#include "desktop/windows/WinLocale.h"
#include "desktop/windows/WinRegistry.h"
#include "desktop/windows/WinShell.h"

// Sets the user's accounts to those of the sample server on this machine. Under Wine it is told the
// server's port, and the user is the private prefix's.

namespace vesko {
namespace {

void Seed(int32_t port) {
  const auto registry = MakeWinRegistry();
  const auto locale = MakeWinLocale(0);
  const auto shell = MakeWinShell();
  mRegistry store(*registry, *locale, *shell);
  Configuration configuration;
  store.Load(configuration);
  configuration.Accounts.Clear();
  for (const char* user : {"minji", "office"}) {
    Variant record = Join({FromAscii(user), u"127.0.0.1", FromAscii(user),
                           Encrypt(u"sample", *locale), Decimal(port), u"1", u""},
                          kCrLf);
    configuration.Accounts.Add(record);
  }
  store.Save(configuration);
}

}  // namespace
}  // namespace vesko

int main(int count, char** arguments) {
  const int port = count == 2 ? std::atoi(arguments[1]) : 0;
  if (port < 1 || port > 65535) {
    std::fputs("usage: vesko-seed-accounts <port>\n", stderr);
    return 2;
  }
  vesko::Seed(port);
  return 0;
}
