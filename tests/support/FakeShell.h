#pragma once

#include <set>
#include <vector>

#include "platform/Shell.h"

namespace vesko {

/// A machine of a few files. What a test sets is what the shell answers.
class FakeShell : public Shell {
 public:
  std::set<Text> files;
  std::set<Text> folders;
  std::set<Text> unstartable;  // exist, yet raise an error when started
  Text own_folder = u"C:\\Vesko";
  char16_t separator = u'\\';
  Text desktop_mail_client;
  std::vector<ForeignAccount> desktop_mail_accounts;

  std::vector<Text> started;           // programs, in order
  int desktop_mail_client_asked = 0;   // calls so far
  int desktop_mail_account_asked = 0;  // calls so far

  std::optional<uint32_t> FileAttributes(const Text& path) override;
  void Start(const Text& program) override;
  Text OwnFolder() override { return own_folder; }
  Text OwnName() override { return u"VeskoEx"; }
  char16_t PathSeparator() const override { return separator; }
  Text DesktopMailClient() override;
  std::optional<ForeignAccount> DesktopMailAccount(int32_t k) override;
};

}  // namespace vesko
