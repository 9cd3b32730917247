#include "demo/Password.h"

#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <iostream>

namespace vesko::demo {
namespace {

termios before;

void EchoAgainAndEnd(int signal) {
  tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
  _exit(128 + signal);
}

class SilentTerminal {
 public:
  SilentTerminal() {
    struct sigaction action {};
    action.sa_handler = EchoAgainAndEnd;
    sigaction(SIGINT, &action, &interrupt_);
    sigaction(SIGTERM, &action, &terminate_);
    termios silent = before;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  ~SilentTerminal() {
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    sigaction(SIGINT, &interrupt_, nullptr);
    sigaction(SIGTERM, &terminate_, nullptr);
    std::cerr << '\n';
  }

 private:
  struct sigaction interrupt_ {};
  struct sigaction terminate_ {};
};

std::string ReadLine() {
  std::string line;
  std::getline(std::cin, line);
  return line;
}

}  // namespace

std::string AskPassword(const std::string& prompt) {
  if (tcgetattr(STDIN_FILENO, &before) != 0) return ReadLine();
  std::cerr << prompt << std::flush;
  SilentTerminal silent;
  return ReadLine();
}

}  // namespace vesko::demo
