#include <cstdio>
#include <exception>
#include <utility>
#include <vector>

#include "demo/Pop3Server.h"
#include "demo/SampleMailbox.h"

// The sample server alone, for components that run in another process or under Wine: tells its port
// and serves until its input ends.
int main() try {
  using namespace vesko::demo;
  std::vector<Pop3Account> accounts;
  for (const char* user : kSampleUsers) accounts.push_back({user, "sample", SampleMessages(user)});
  const Pop3Server server(std::move(accounts));
  std::printf("%d\n", server.Port());
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "vesko-demo-server: %s\n", error.what());
  return 1;
}
