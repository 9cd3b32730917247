#pragma once

#include <QWidget>
#include <memory>

#include "desktop/linux/toolkit/QtControlPeer.h"
#include "ui/Controls.h"

namespace vesko {

using PeerPtr = std::unique_ptr<QtControlPeer>;

/// Build the widget of a control, without a parent yet: whoever lays it out adopts it.
PeerPtr MakeQtPeer(Label& control, const PeerContext& context);
PeerPtr MakeQtPeer(CommandButton& control, const PeerContext& context);
PeerPtr MakeQtPeer(CheckBox& control, const PeerContext& context);
PeerPtr MakeQtPeer(TextBox& control, const PeerContext& context);
PeerPtr MakeQtPeer(ProgressBar& control, const PeerContext& context);
PeerPtr MakeQtPeer(ListBox& control, const PeerContext& context);
PeerPtr MakeQtPeer(ListView& control, const PeerContext& context);
/// The box's content is to be laid out in its widget.
PeerPtr MakeQtPeer(Frame& control, const PeerContext& context);
/// `pages` are the widgets of the control's pages, in their order.
PeerPtr MakeQtPeer(TabControl& control, const std::vector<QWidget*>& pages,
                   const PeerContext& context);

}  // namespace vesko
