#include "desktop/linux/toolkit/QtLayout.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <algorithm>
#include <utility>

#include "desktop/linux/toolkit/QtControls.h"

namespace vesko {
namespace {

class Builder {
 public:
  Builder(const PeerContext& context, std::vector<PeerPtr>& peers)
      : context_(context), peers_(peers) {}

  QLayout* Build(const Layout& layout) {
    if (layout.kind == Layout::Kind::kGrid) return BuildGrid(layout);
    auto* const box = layout.kind == Layout::Kind::kRow ? static_cast<QBoxLayout*>(new QHBoxLayout)
                                                        : static_cast<QBoxLayout*>(new QVBoxLayout);
    if (layout.kind == Layout::Kind::kControl) {
      box->addWidget(BuildWidget(*layout.control));
    }
    for (const Layout& item : layout.items) AddTo(*box, item);
    return box;
  }

 private:
  void AddTo(QBoxLayout& box, const Layout& item) {
    if (item.kind == Layout::Kind::kSpace) {
      box.addStretch(item.stretch);
    } else if (item.kind == Layout::Kind::kControl) {
      box.addWidget(BuildWidget(*item.control), item.stretch);
    } else {
      box.addLayout(BuildInner(item), item.stretch);
    }
  }

  QLayout* BuildGrid(const Layout& layout) {
    auto* const grid = new QGridLayout;
    const int columns = std::max(layout.columns, 1);
    grid->setColumnStretch(columns - 1, 1);
    int cell = 0;
    for (const Layout& item : layout.items) {
      AddTo(*grid, item, cell / columns, cell % columns);
      ++cell;
    }
    return grid;
  }

  void AddTo(QGridLayout& grid, const Layout& item, int row, int column) {
    if (item.kind == Layout::Kind::kControl) {
      grid.addWidget(BuildWidget(*item.control), row, column);
    } else if (item.kind != Layout::Kind::kSpace) {
      grid.addLayout(BuildInner(item), row, column);
    }
    if (item.stretch > 0) grid.setRowStretch(row, item.stretch);
  }

  // Margins surround a window, a frame or a page, not every row.
  QLayout* BuildInner(const Layout& layout) {
    QLayout* const inner = Build(layout);
    inner->setContentsMargins(0, 0, 0, 0);
    return inner;
  }

  QWidget* BuildWidget(Control& control) {
    peers_.push_back(MakeQtPeer(control, context_));
    const QtControlPeer& peer = *peers_.back();
    const std::vector<const Layout*> contents = control.Contents();
    for (size_t i = 0; i < contents.size(); ++i) {
      peer.Containers()[i]->setLayout(Build(*contents[i]));
    }
    return peer.GetWidget();
  }

  const PeerContext& context_;
  std::vector<PeerPtr>& peers_;
};

void JoinLabels(const std::vector<PeerPtr>& peers) {
  QtControlPeer* next = nullptr;
  for (auto peer = peers.rbegin(); peer != peers.rend(); ++peer) {
    if (next) (*peer)->LeadTo(*next);
    if ((*peer)->TakesFocus()) next = peer->get();
  }
}

}  // namespace

QLayout* BuildLayout(const Layout& layout, const PeerContext& context,
                     std::vector<PeerPtr>& peers) {
  QLayout* const built = Builder(context, peers).Build(layout);
  JoinLabels(peers);
  return built;
}

}  // namespace vesko
