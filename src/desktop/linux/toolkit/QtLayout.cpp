#include "desktop/linux/toolkit/QtLayout.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <algorithm>
#include <utility>

namespace vesko {
namespace {

class Builder : private ControlVisitor {
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

  // Margins stand around a window, a box or a page, not around every row.
  QLayout* BuildInner(const Layout& layout) {
    QLayout* const inner = Build(layout);
    inner->setContentsMargins(0, 0, 0, 0);
    return inner;
  }

  QWidget* BuildWidget(Control& control) {
    control.Accept(*this);
    return built_;
  }

  template <typename Kind>
  void Make(Kind& control) {
    Keep(MakeQtPeer(control, context_));
  }

  void Keep(PeerPtr peer) {
    built_ = peer->Widget();
    peers_.push_back(std::move(peer));
  }

  void Visit(Label& control) override { Make(control); }
  void Visit(CommandButton& control) override { Make(control); }
  void Visit(CheckBox& control) override { Make(control); }
  void Visit(TextBox& control) override { Make(control); }
  void Visit(ProgressBar& control) override { Make(control); }
  void Visit(ListBox& control) override { Make(control); }
  void Visit(ListView& control) override { Make(control); }

  void Visit(Frame& control) override {
    Make(control);
    QWidget* const box = built_;
    box->setLayout(Build(control.content));
    built_ = box;
  }

  void Visit(TabControl& control) override {
    std::vector<QWidget*> pages(control.pages.size());
    for (QWidget*& page : pages) page = new QWidget;
    Keep(MakeQtPeer(control, pages, context_));
    QWidget* const tabs = built_;
    for (size_t i = 0; i < pages.size(); ++i) pages[i]->setLayout(Build(control.pages[i].content));
    built_ = tabs;
  }

  const PeerContext& context_;
  std::vector<PeerPtr>& peers_;
  QWidget* built_ = nullptr;
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
