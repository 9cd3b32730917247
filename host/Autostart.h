#pragma once

namespace vesko_host {

/// Whether the desktop starts this program at login: an entry in the user's autostart folder.
bool AutostartIsOn();

/// Writes or removes the entry; false where that fails.
bool SetAutostart(bool on);

}  // namespace vesko_host
