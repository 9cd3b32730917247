#pragma once

namespace vesko {

/// Whether Qt would find a platform to show windows on: one that QT_QPA_PLATFORM names, else
/// Wayland or X, with a plugin that is installed and a server that answers now. Qt itself ends the
/// process where it finds none, which a library must not do to its host. Needs no QApplication,
/// makes a connection to the server and closes it. An X server that accepts but never speaks is
/// waited for.
bool CanShowWindows();

}  // namespace vesko
