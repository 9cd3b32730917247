#pragma once

#include <set>
#include <vector>

#include "base/RunTimeError.h"
#include "platform/Shell.h"

namespace vesko {

/// A machine of a few files. What a test sets is what the shell answers.
class FakeShell : public Shell {
 public:
  std::set<Text> files;
  std::set<Text> folders;
  std::set<Text> unstartable;  // exist, yet raise an error when started
  Text desktop_mail_client;
  std::vector<ForeignAccount> desktop_mail_accounts;

  std::vector<Text> started;           // programs, in order
  int desktop_mail_client_asked = 0;   // calls so far
  int desktop_mail_account_asked = 0;  // calls so far

  std::optional<uint32_t> FileAttributes(const Text& path) override {
    if (folders.contains(path)) return kAttributeDirectory;
    return files.contains(path) ? std::optional<uint32_t>(0) : std::nullopt;
  }
  void Start(const Text& program) override {
    if (unstartable.contains(program) || !files.contains(program)) {
      throw RunTimeError(kFileNotFound);
    }
    started.push_back(program);
  }
  Text OwnFolder() override { return u"C:\\Vesko"; }
  Text OwnName() override { return u"VeskoEx"; }
  char16_t PathSeparator() const override { return u'\\'; }
  Text DesktopMailClient() override {
    ++desktop_mail_client_asked;
    return desktop_mail_client;
  }
  std::optional<ForeignAccount> DesktopMailAccount(int32_t k) override {
    ++desktop_mail_account_asked;
    const auto index = static_cast<size_t>(k) - 1;
    if (index >= desktop_mail_accounts.size()) return std::nullopt;
    return desktop_mail_accounts[index];
  }
};

}  // namespace vesko
