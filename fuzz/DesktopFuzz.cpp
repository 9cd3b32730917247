// The desktop's entry of a mail program, and another mail program's profile.
//
// The content is three files, each up to a form feed: an entry, profiles.ini and prefs.js.

#include <gio/gdesktopappinfo.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "Fuzz.h"
#include "desktop/linux/LinuxDesktop.h"
#include "desktop/linux/shell/MailtoProgram.h"
#include "support/TempFolder.h"

namespace vesko::fuzz {
namespace {

/// A folder with one program and one mail program's profile; made once, as files are slow.
const TempFolder& Home() {
  static const TempFolder folder;
  static const bool made = [] {
    folder.Write("bin/mail", "#!/bin/sh\n");
    chmod((folder / "bin/mail").c_str(), 0755);
    setenv("PATH", (folder / "bin").c_str(), 1);
    return true;
  }();
  Expect(made, "a folder can be made");
  return folder;
}

GAppInfo* Parse(const std::string& entry) {
  GKeyFile* file = g_key_file_new();
  const bool read = g_key_file_load_from_data(file, entry.data(), entry.size(), G_KEY_FILE_NONE,
                                              nullptr) != FALSE;
  GDesktopAppInfo* application = read ? g_desktop_app_info_new_from_keyfile(file) : nullptr;
  g_key_file_free(file);
  return application != nullptr ? G_APP_INFO(application) : nullptr;
}

void ExpectProgram(const std::string& entry) {
  GAppInfo* application = Parse(entry);
  if (application == nullptr) return;
  const std::string path = ProgramOf(application);
  g_object_unref(application);
  if (path.empty()) return;
  Expect(path.starts_with('/') && std::filesystem::is_regular_file(path) &&
             access(path.c_str(), X_OK) == 0,
         "a mail program can be started");
}

void ExpectAccounts(Shell& shell) {
  for (int32_t k = 1; auto account = shell.DesktopMailAccount(k); ++k) {
    Expect(k <= 1000, "there is an end to accounts");
    for (const Text& value : {account->name, account->server, account->user}) {
      Expect(value.size() <= 4096, "a value is not endless");
      for (char16_t c : value) Expect(c >= 32 && c != 127, "a value has no control character");
    }
    Expect(account->port > 0 && account->port < 65536, "a port is one");
    Expect(!account->server.empty(), "an account has a server");
  }
}

void Run(Input input) {
  const TempFolder& home = Home();
  ExpectProgram(input.Until('\f'));
  home.Write("mail/profiles.ini", input.Until('\f'));
  home.Write("mail/p/prefs.js", input.Until('\f'));
  ExpectAccounts(*MakeLinuxShell({home / "mail"}));
}

}  // namespace
}  // namespace vesko::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  vesko::fuzz::Run({data, size});
  return 0;
}
