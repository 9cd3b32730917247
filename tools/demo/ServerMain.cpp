#include <QCoreApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <utility>
#include <vector>

#include "demo/Pop3Server.h"
#include "demo/SampleMailbox.h"

// The sample server alone, for components that run in another process or under Wine. It prints its
// port and serves until its input ends. The argument is the time that each answer takes, in
// milliseconds, for watching a check.
int main(int count, char** arguments) try {
  using namespace vesko::demo;
  const QCoreApplication application(count, arguments);
  Pop3Faults pace;
  if (count > 1) pace.answer_delay = std::chrono::milliseconds(std::atoi(arguments[1]));
  std::vector<Pop3Account> accounts;
  for (const char* user : kSampleUsers) accounts.push_back({user, "sample", SampleMessages(user)});
  const Pop3Server server(std::move(accounts), pace);
  std::printf("%d\n", server.Port());
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "vesko-demo-server: %s\n", error.what());
  return 1;
}
