#include "e2e/Dovecot.h"

#include <arpa/inet.h>
#include <grp.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace vesko {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char* kProgram = "/usr/sbin/dovecot";

sockaddr_in Loopback(uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

// Free at this moment; Dovecot has no way to choose and tell one itself.
uint16_t FreePort() {
  int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address = Loopback(0);
  socklen_t size = sizeof address;
  ::bind(fd, reinterpret_cast<sockaddr*>(&address), size);
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size);
  ::close(fd);
  return ntohs(address.sin_port);
}

bool Greets(uint16_t port) {
  int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  timeval limit{10, 0};
  ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  sockaddr_in address = Loopback(port);
  char first = 0;
  bool greets = ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                ::recv(fd, &first, 1, 0) == 1 && first == '+';
  ::close(fd);
  return greets;
}

}  // namespace

Dovecot::Dovecot(std::vector<Account> accounts) {
  if (!fs::exists(kProgram)) throw std::runtime_error("the package dovecot-pop3d is missing");
  const passwd* owner = ::getuid() == 0 ? ::getpwnam("nobody") : ::getpwuid(::getuid());
  owner_ = owner->pw_name;
  uid_ = owner->pw_uid;
  gid_ = owner->pw_gid;
  for (const Account& account : accounts) {
    for (const char* part : {"new", "cur", "tmp"})
      fs::create_directories(Maildir(account.user) / part);
  }
  for (int tries = 3; tries > 0; --tries) {
    port_ = FreePort();
    WriteConfiguration(accounts);
    if (Start()) return;
    Stop();
  }
  throw std::runtime_error("Dovecot does not start: " + temporary_.Read("log"));
}

Dovecot::~Dovecot() { Stop(); }

fs::path Dovecot::Maildir(const std::string& user) const { return folder_ / "mail" / user; }

void Dovecot::WriteConfiguration(const std::vector<Account>& accounts) const {
  std::ofstream passwords(folder_ / "passwd");
  for (const Account& account : accounts) {
    passwords << account.user << ":{PLAIN}" << account.password << '\n';
  }
  const std::string folder = folder_.string();
  // What would need root is switched off: other users for the services, and their locked rooms.
  std::ofstream(folder_ / "dovecot.conf")
      << "base_dir = " << folder << "/run\n"
      << "state_dir = " << folder << "/state\n"
      << "log_path = " << folder << "/log\n"
      << "protocols = pop3\n"
         "listen = 127.0.0.1\n"
         "ssl = no\n"
         "disable_plaintext_auth = no\n"
         "auth_failure_delay = 0\n"
      << "default_internal_user = " << owner_ << '\n'
      << "default_login_user = " << owner_ << '\n'
      << "default_internal_group = " << ::getgrgid(gid_)->gr_name << '\n'
      << "first_valid_uid = 1\n"
         "first_valid_gid = 1\n"
      << "mail_location = maildir:" << folder << "/mail/%u\n"
      << "passdb {\n  driver = passwd-file\n  args = " << folder << "/passwd\n}\n"
      << "userdb {\n  driver = static\n  args = uid=" << uid_ << " gid=" << gid_
      << " home=" << folder << "/mail/%u\n}\n"
      << "service pop3-login {\n  chroot =\n  inet_listener pop3 {\n    port = " << port_
      << "\n  }\n  inet_listener pop3s {\n    port = 0\n  }\n}\n"
      << "service anvil {\n  chroot =\n}\n"
         "service stats {\n  chroot =\n}\n";
}

bool Dovecot::Start() {
  GiveAway(folder_);
  const std::string configuration = (folder_ / "dovecot.conf").string();
  const pid_t parent = ::getpid();
  process_ = ::fork();
  if (process_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != parent) ::_exit(1);
    ::execl(kProgram, kProgram, "-F", "-c", configuration.c_str(), nullptr);
    ::_exit(127);
  }
  for (int tries = 0; tries < 200; ++tries) {
    if (Greets(port_)) return true;
    if (::waitpid(process_, nullptr, WNOHANG) == process_) {
      process_ = -1;
      return false;
    }
    std::this_thread::sleep_for(50ms);
  }
  return false;
}

void Dovecot::Stop() {
  if (process_ <= 0) return;
  ::kill(process_, SIGTERM);
  ::waitpid(process_, nullptr, 0);
  process_ = -1;
}

std::string Dovecot::Deliver(const std::string& user, const std::string& message) {
  // The server numbers new messages by the time at the beginning of the name.
  const std::string name = std::to_string(1700000000 + ++delivered_) + ".e2e.example";
  const fs::path temporary = Maildir(user) / "tmp" / name;
  std::ofstream(temporary, std::ios::binary) << message;
  GiveAway(temporary);
  fs::rename(temporary, Maildir(user) / "new" / name);
  return name;
}

std::set<std::string> Dovecot::Files(const std::string& user) const {
  std::set<std::string> names;
  for (const char* part : {"new", "cur", "tmp"}) {
    for (const auto& entry : fs::directory_iterator(Maildir(user) / part)) {
      const std::string name = entry.path().filename().string();
      names.insert(name.substr(0, name.find_first_of(":,")));
    }
  }
  return names;
}

void Dovecot::GiveAway(const fs::path& path) const {
  if (::getuid() != 0) return;
  if (::lchown(path.c_str(), uid_, gid_) != 0) throw std::runtime_error("chown " + path.string());
  if (!fs::is_directory(path)) return;
  for (const auto& entry : fs::directory_iterator(path)) GiveAway(entry.path());
}

}  // namespace vesko
