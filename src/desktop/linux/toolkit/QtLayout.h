#pragma once

#include <QLayout>
#include <vector>

#include "desktop/linux/toolkit/QtControls.h"
#include "ui/Layout.h"

namespace vesko {

/// Builds the widgets of a layout and arranges them. Appends their peers to `peers` in the layout's
/// order, and joins labels with the controls behind them.
QLayout* BuildLayout(const Layout& layout, const PeerContext& context, std::vector<PeerPtr>& peers);

}  // namespace vesko
