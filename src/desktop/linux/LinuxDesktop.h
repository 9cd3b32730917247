#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "component/Desktop.h"

// All that is visible of the Linux desktop: a factory for each service, and one for the whole.

namespace vesko {

/// Code page that goes with the name of a code set ("EUC-KR", "UTF-8", "ISO-8859-1"): 949, 932,
/// 936, 950 for the legacy ones of Korean, Japanese and Chinese, 125x and the like for single-byte
/// ones, else 65001. Case and punctuation of the name do not matter.
int CodePageOfCodeSet(std::string_view code_set);

/// Code page of the user's locale.
int HostCodePage();

/// A locale on ICU. An empty name is the user's locale. An unknown code page counts as 65001. For
/// one thread: its converters are not shared safely.
std::unique_ptr<Locale> MakeIcuLocale(int code_page, const std::string& locale_name);

/// Lets about this much time pass and returns how much it was.
using PassTime = std::function<std::chrono::milliseconds(std::chrono::milliseconds)>;

/// A registry of one SQLite file (write-ahead log) a hive, in two folders that are created (0700,
/// files 0600) when something is first written. What belongs to this user is closed to others when
/// a hive is opened. A hive that cannot be opened or written yields status codes; two processes may
/// use one hive at once, and `pass_time` is called while one waits for the other (empty: it
/// sleeps).
std::unique_ptr<Registry> MakeSqliteRegistry(const std::string& user_folder,
                                             const std::string& machine_folder,
                                             PassTime pass_time = {});

/// Folders of this user that may hold profiles of the mail program, by its profiles.ini; the first
/// is asked first.
std::vector<std::string> UserMailProfiles();

/// Files, programs and the desktop's own settings. The default mail program is looked up with the
/// XDG variables and the PATH of the process; accounts are read from `mail_profiles`.
std::unique_ptr<Shell> MakeLinuxShell(std::vector<std::string> mail_profiles = UserMailProfiles());

/// A TCP client on the event loop of the calling thread's Qt application. `certificate_file` names
/// a PEM file of certificate authorities trusted besides the system's; it is read when the first
/// TLS connection is made, and without effect when it cannot be read. A connection to one of
/// `tls_ports` is TLS (1.2 or later) from its first byte. The locale must outlive the socket; the
/// socket must not be destroyed from within one of its events.
std::unique_ptr<Socket> MakeQtSocket(const Locale& locale, const std::string& certificate_file,
                                     std::vector<int32_t> tls_ports = {kPop3sPort});

/// Plays by the sound server of the desktop, where there is one.
std::unique_ptr<Sound> MakeQtSound();

/// Native windows by Qt widgets. Needs the process's QApplication.
std::unique_ptr<Toolkit> MakeQtToolkit();

/// Where the Linux desktop keeps things. Empty fields mean the user's own.
struct LinuxDesktopOptions {
  std::string user_hive_folder;     // default: the user's XDG configuration folder + "/VeskoEx"
  std::string machine_hive_folder;  // default: /etc/VeskoEx
  std::string locale_name;          // "ko_KR", "en_GB"; default: the user's
  int code_page = 0;                // 0: of the hives, the user's first, else of the locale
  std::string certificate_file;     // PEM file of further certificate authorities for port 995
};

/// The Linux desktop: Qt for widgets, events, sockets and sound, SQLite for the hives, ICU for text
/// and dates. Creates the process's QApplication where the host has none, which lives until the
/// process ends. To be made and used on the user-interface thread. Raises a run-time error with an
/// HRESULT as its number: host::kNoDisplay where no window can be shown, RPC_E_WRONG_THREAD beside
/// the host's user-interface thread.
std::unique_ptr<Desktop> MakeLinuxDesktop(const LinuxDesktopOptions& options = {});

}  // namespace vesko
