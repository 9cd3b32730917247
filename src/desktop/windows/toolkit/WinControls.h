#pragma once

#include "desktop/windows/toolkit/WinControlPeer.h"

namespace vesko {

/// Builds the native window of a control as a child of `parent`, without a place yet. The control's
/// contents are built in the peer's containers afterwards.
WinPeerPtr MakeWinPeer(Control& control, HWND parent, WinContext& context);

/// The kind that has a file of its own.
WinPeerPtr MakeListViewPeer(ListView& control, HWND parent, WinContext& context);

}  // namespace vesko
