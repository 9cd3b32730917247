#pragma once

#include "desktop/linux/toolkit/QtControlPeer.h"
#include "ui/Controls.h"

namespace vesko {

/// Builds the widget of a control, without a parent yet: the layout that it is put into adopts it.
/// The control's contents are laid out in the peer's containers afterwards.
PeerPtr MakeQtPeer(Control& control, const PeerContext& context);

/// The kinds that have files of their own.
PeerPtr MakeLabelPeer(Label& control, const PeerContext& context);
PeerPtr MakeTextBoxPeer(TextBox& control, const PeerContext& context);
PeerPtr MakeListViewPeer(ListView& control, const PeerContext& context);

}  // namespace vesko
