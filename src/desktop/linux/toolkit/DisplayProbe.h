#pragma once

namespace vesko {

/// Whether Qt would find a platform to show windows on. Qt itself ends the process where it finds
/// none, which a library must not do to its host. Needs no QApplication.
bool CanShowWindows();

}  // namespace vesko
