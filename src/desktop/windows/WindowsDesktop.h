#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "component/Desktop.h"
#include "desktop/windows/events/EventSources.h"

// All that is visible of the Windows desktop: a factory for each service, and one for the whole.

namespace vesko {

/// A locale on the system's own string, code page and date services. 0 means the process's ANSI
/// code page, which its narrow system calls use, as does one that the system lacks. The name is a
/// language's ("en-GB"); an empty one means the user's, as does one that the system does not know.
std::unique_ptr<Locale> MakeWinLocale(int code_page, const std::wstring& name = {});

/// The system's registry. Names and texts are bytes in the code page, as of MakeWinLocale. The
/// system stores each value by itself; a transaction only keeps the component's other processes
/// out.
std::unique_ptr<Registry> MakeWinRegistry(int code_page = 0);

/// Files, programs and folders by the system's shell.
std::unique_ptr<Shell> MakeWinShell();

/// A TCP client on Winsock whose events come when the sources are asked and with the thread's
/// messages. `certificate_file`
/// names (in the system's code page) a PEM file of certificate authorities trusted besides the
/// system's; it is read with each TLS connection, and without effect when it cannot be read. A
/// connection to one of `tls_ports` is TLS (1.2 or later) from its first byte. Locale and
/// sources must outlive the socket; the socket must not be destroyed from within one of its events.
std::unique_ptr<Socket> MakeWinSocket(const Locale& locale, EventSources& sources,
                                      const std::string& certificate_file = {},
                                      std::vector<int32_t> tls_ports = {kPop3sPort});

/// Wave output by winmm. Paths are passed in the process's ANSI code page.
std::unique_ptr<Sound> MakeWinSound();

/// Native windows from the common controls, on the thread's message pump, which asks the sources as
/// well. They must outlive the toolkit.
std::unique_ptr<Toolkit> MakeWinToolkit(EventSources& sources);

/// The Windows desktop: the system's registry, sockets, common controls, sound and languages. To
/// be made and used on one thread, the one whose messages are pumped. Texts and registry use the
/// code page, as of MakeWinLocale.
std::unique_ptr<Desktop> MakeWindowsDesktop(int code_page = 0);

}  // namespace vesko
