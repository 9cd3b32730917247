#pragma once

namespace vesko_host {

/// Whether the desktop starts this program at login, which it does while there is an entry in the
/// user's autostart folder.
bool AutostartIsOn();

/// Writes or removes the entry. Doing it again changes nothing. False where it fails; the entry is
/// then as it was.
bool SetAutostart(bool on);

}  // namespace vesko_host
