#pragma once

#include <QLayout>
#include <vector>

#include "desktop/linux/toolkit/QtControlPeer.h"
#include "ui/Layout.h"

namespace vesko {

/// Builds the widgets of a layout and arranges them. Appends their peers to `peers` in the layout's
/// order, containers before their contents, and joins labels with the controls behind them. The
/// result belongs to the caller until a widget takes it as its layout. Controls in it must outlive
/// the peers.
QLayout* BuildLayout(const Layout& layout, const PeerContext& context, std::vector<PeerPtr>& peers);

}  // namespace vesko
