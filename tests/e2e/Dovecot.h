#pragma once

#include <sys/types.h>

#include <QProcess>
#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "support/TempFolder.h"

namespace vesko {

/// A Dovecot of its own: POP3 on a free port of 127.0.0.1, its configuration, mail and run-time
/// files in a temporary folder, a Maildir for each account. Runs as any user; under root its
/// processes are those of "nobody". Stopped with the object, and with the process however it ends.
class Dovecot {
 public:
  struct Account {
    std::string user;
    std::string password;
  };

  /// Returns when the server accepts connections. Throws std::runtime_error with the server's log
  /// when it does not. With a certificate and its key, PEM in one text, it speaks TLS on a port of
  /// its own besides.
  explicit Dovecot(const std::vector<Account>& accounts, const std::string& certificate = {});
  ~Dovecot();

  uint16_t Port() const { return port_; }
  uint16_t TlsPort() const { return tls_port_; }

  /// Puts a message into the account's Maildir. Messages are numbered in the order of delivery.
  /// Returns the name of its file, flags left out.
  std::string Deliver(const std::string& user, const std::string& message);

  /// Names of all files in the account's Maildir, flags left out.
  std::set<std::string> Files(const std::string& user) const;

 private:
  std::filesystem::path Maildir(const std::string& user) const;
  void WriteConfiguration(const std::vector<Account>& accounts) const;
  bool Start();
  void GiveAway(const std::filesystem::path& path) const;

  TempFolder temporary_;
  const std::filesystem::path folder_ = temporary_.Path();
  std::string owner_ = "nobody";  // who the server's processes and the mail belong to
  uid_t uid_ = 0;
  gid_t gid_ = 0;
  uint16_t port_ = 0;
  uint16_t tls_port_ = 0;  // 0: no TLS
  QProcess server_;
  int delivered_ = 0;
};

}  // namespace vesko
