#include "e2e/Dovecot.h"

#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <csignal>
#include <fstream>
#include <stdexcept>

namespace vesko {
namespace {

namespace fs = std::filesystem;

constexpr const char* kProgram = "/usr/sbin/dovecot";

// Free at this moment; Dovecot has no way to choose and tell one itself.
uint16_t FreePort() {
  QTcpServer server;
  server.listen(QHostAddress::LocalHost);
  return server.serverPort();
}

bool Greets(uint16_t port) {
  QTcpSocket client;
  client.connectToHost(QHostAddress::LocalHost, port);
  return client.waitForReadyRead() && client.read(1) == "+";
}

}  // namespace

Dovecot::Dovecot(const std::vector<Account>& accounts, const std::string& certificate) {
  if (!fs::exists(kProgram)) throw std::runtime_error("the package dovecot-pop3d is missing");
  const passwd* owner = ::getuid() == 0 ? ::getpwnam("nobody") : ::getpwuid(::getuid());
  owner_ = owner->pw_name;
  uid_ = owner->pw_uid;
  gid_ = owner->pw_gid;
  for (const Account& account : accounts) {
    for (const char* part : {"new", "cur", "tmp"})
      fs::create_directories(Maildir(account.user) / part);
  }
  server_.setProcessChannelMode(QProcess::ForwardedChannels);
  server_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
  if (!certificate.empty()) temporary_.Write("certificate", certificate);
  for (int tries = 3; tries > 0; --tries) {
    port_ = FreePort();
    if (!certificate.empty()) tls_port_ = FreePort();
    WriteConfiguration(accounts);
    if (Start()) return;
  }
  throw std::runtime_error("Dovecot does not start: " + temporary_.Read("log"));
}

Dovecot::~Dovecot() {
  server_.terminate();
  server_.waitForFinished();
}

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
      << "protocols = pop3\nlisten = 127.0.0.1\n"
         "disable_plaintext_auth = no\nauth_failure_delay = 0\n"
      << (tls_port_ ? "ssl = yes\nssl_cert = <" + folder + "/certificate\nssl_key = <" + folder +
                          "/certificate\n"
                    : "ssl = no\n")
      << "default_internal_user = " << owner_ << '\n'
      << "default_login_user = " << owner_ << '\n'
      << "default_internal_group = " << ::getgrgid(gid_)->gr_name << '\n'
      << "first_valid_uid = 1\nfirst_valid_gid = 1\n"
      << "mail_location = maildir:" << folder << "/mail/%u\n"
      << "passdb {\n  driver = passwd-file\n  args = " << folder << "/passwd\n}\n"
      << "userdb {\n  driver = static\n  args = uid=" << uid_ << " gid=" << gid_
      << " home=" << folder << "/mail/%u\n}\n"
      << "service pop3-login {\n  chroot =\n  inet_listener pop3 {\n    port = " << port_
      << "\n  }\n  inet_listener pop3s {\n    port = " << tls_port_ << "\n  }\n}\n"
      << "service anvil {\n  chroot =\n}\nservice stats {\n  chroot =\n}\n";
}

bool Dovecot::Start() {
  GiveAway(folder_);
  server_.start(kProgram, {"-F", "-c", QString::fromStdString(folder_ / "dovecot.conf")});
  for (int tries = 0; tries < 200; ++tries) {
    if (Greets(port_)) return true;
    server_.waitForFinished(50);
    if (server_.state() == QProcess::NotRunning) return false;
  }
  return false;
}

std::string Dovecot::Deliver(const std::string& user, const std::string& message) {
  // The server numbers new messages by the time at the beginning of the name.
  std::string name = std::to_string(1700000000 + ++delivered_) + ".e2e.example";
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
