#include "desktop/windows/toolkit/WinLayout.h"

#include <algorithm>
#include <numeric>

#include "desktop/windows/toolkit/WinControls.h"
#include "desktop/windows/toolkit/WinTabs.h"

namespace vesko {

namespace {

constexpr int kMargin = 9;   // logical pixels around a window, a box or a page
constexpr int kSpacing = 6;  // between two items

/// Distributes spare room by shares; rounding leaves the rest to the last share.
void Deal(std::vector<int>& sizes, const std::vector<int>& shares, int spare) {
  int left = std::accumulate(shares.begin(), shares.end(), 0);
  for (size_t i = 0; i < sizes.size() && left > 0; ++i) {
    const int part = spare * shares[i] / left;
    sizes[i] += part;
    spare -= part;
    left -= shares[i];
  }
}

}  // namespace

/// One item of the layout with its contents.
struct WinLayout::Node {
  Layout::Kind kind;
  int columns;
  int stretch;
  WinContext& context;
  WinPeerPtr peer;
  WinTabs* tabs = nullptr;
  std::vector<std::unique_ptr<Node>> items;  // of a frame one, of tabs one for each page

  int Spacing() const { return context.Scaled(kSpacing); }
  int Margin() const { return context.Scaled(kMargin); }
  int CaptionRoom() const { return peer->HeightFor(0) + Spacing(); }
  int Gaps() const { return items.empty() ? 0 : Spacing() * static_cast<int>(items.size() - 1); }
  int Rows() const { return (static_cast<int>(items.size()) + columns - 1) / columns; }

  bool GrowsSideways() const { return Grows(&WinControlPeer::GrowsSideways); }
  bool GrowsDown() const { return Grows(&WinControlPeer::GrowsDown); }
  bool Grows(bool (WinControlPeer::*grows)() const) const {
    if (kind == Layout::Kind::kSpace) return false;
    const bool inside = std::any_of(items.begin(), items.end(),
                                    [&](const auto& item) { return item->Grows(grows); });
    return inside || (peer && (peer.get()->*grows)());
  }

  int LeastWidth() const {
    switch (kind) {
      case Layout::Kind::kControl:
        return ControlWidth();
      case Layout::Kind::kRow:
        return Sum([](const Node& item) { return item.LeastWidth(); }) + Gaps();
      case Layout::Kind::kColumn:
        return Most([](const Node& item) { return item.LeastWidth(); });
      case Layout::Kind::kGrid: {
        const std::vector<int> widths = ColumnWidths(0);
        return std::accumulate(widths.begin(), widths.end(), Spacing() * (columns - 1));
      }
      case Layout::Kind::kSpace:
        return 0;
    }
    return 0;
  }

  int HeightFor(int width) const {
    switch (kind) {
      case Layout::Kind::kControl:
        return ControlHeight(width);
      case Layout::Kind::kRow: {
        const std::vector<int> widths = RowWidths(width);
        int height = 0;
        for (size_t i = 0; i < items.size(); ++i) {
          height = std::max(height, items[i]->HeightFor(widths[i]));
        }
        return height;
      }
      case Layout::Kind::kColumn:
        return Sum([&](const Node& item) { return item.HeightFor(width); }) + Gaps();
      case Layout::Kind::kGrid: {
        const std::vector<int> heights = RowHeights(ColumnWidths(width));
        return std::accumulate(heights.begin(), heights.end(), Spacing() * (Rows() - 1));
      }
      case Layout::Kind::kSpace:
        return 0;
    }
    return 0;
  }

  void Place(const RECT& area) {
    switch (kind) {
      case Layout::Kind::kControl:
        return PlaceControl(area);
      case Layout::Kind::kRow:
        return PlaceRow(area);
      case Layout::Kind::kColumn:
        return PlaceColumn(area);
      case Layout::Kind::kGrid:
        return PlaceGrid(area);
      case Layout::Kind::kSpace:
        return;
    }
  }

 private:
  template <typename Measure>
  int Sum(Measure&& measure) const {
    int sum = 0;
    for (const auto& item : items) sum += measure(*item);
    return sum;
  }
  template <typename Measure>
  int Most(Measure&& measure) const {
    int most = 0;
    for (const auto& item : items) most = std::max(most, measure(*item));
    return most;
  }

  /// Least width of a control, including the contents of a frame or of tabs.
  int ControlWidth() const {
    const int width = peer->LeastWidth();
    const int inside = Most([](const Node& item) { return item.LeastWidth(); });
    return items.empty() ? width : std::max<int>(width, inside + Around().cx);
  }

  int ControlHeight(int width) const {
    if (items.empty()) return peer->HeightFor(width);
    const SIZE around = Around();
    const int inside = Most([&](const Node& item) { return item.HeightFor(width - around.cx); });
    return inside + around.cy;
  }

  SIZE Around() const {
    const int margin = Margin();
    if (!tabs) return {2 * margin, CaptionRoom() + margin};
    const RECT page = tabs->PageArea({0, 0, 1000, 1000});
    return {1000 - (page.right - page.left) + 2 * margin,
            1000 - (page.bottom - page.top) + 2 * margin};
  }

  void PlaceControl(const RECT& area) {
    peer->Place(area);
    if (tabs) return PlacePages(area);
    if (items.empty()) return;
    const int margin = Margin();
    items[0]->Place(
        {area.left + margin, area.top + CaptionRoom(), area.right - margin, area.bottom - margin});
  }

  void PlacePages(const RECT& area) {
    const RECT page = tabs->PageArea(area);
    const int width = page.right - page.left;
    const int height = page.bottom - page.top;
    // Below its pages, so that it does not hide them; that also makes it the last in the tab order.
    SetWindowPos(tabs->Window(), HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    for (size_t i = 0; i < items.size(); ++i) {
      SetWindowPos(tabs->Containers()[i], nullptr, page.left, page.top, width, height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
      items[i]->Place({Margin(), Margin(), width - Margin(), height - Margin()});
    }
  }

  /// The items' stretches; where none has any, one share for each item that can use the room.
  std::vector<int> Shares(bool (Node::*grows)() const) const {
    std::vector<int> shares;
    for (const auto& item : items) shares.push_back(item->stretch);
    if (std::accumulate(shares.begin(), shares.end(), 0) > 0) return shares;
    for (size_t i = 0; i < items.size(); ++i) shares[i] = ((*items[i]).*grows)() ? 1 : 0;
    return shares;
  }

  std::vector<int> RowWidths(int width) const {
    std::vector<int> widths;
    for (const auto& item : items) widths.push_back(item->LeastWidth());
    Deal(widths, Shares(&Node::GrowsSideways), std::max(0, width - LeastWidth()));
    return widths;
  }

  void PlaceRow(const RECT& area) {
    const std::vector<int> widths = RowWidths(area.right - area.left);
    LONG left = area.left;
    for (size_t i = 0; i < items.size(); ++i) {
      items[i]->PlaceIn({left, area.top, left + widths[i], area.bottom});
      left += widths[i] + Spacing();
    }
  }

  void PlaceColumn(const RECT& area) {
    const int width = area.right - area.left;
    std::vector<int> heights;
    for (const auto& item : items) heights.push_back(item->HeightFor(width));
    const int spare = area.bottom - area.top - HeightFor(width);
    Deal(heights, Shares(&Node::GrowsDown), std::max(0, spare));
    LONG top = area.top;
    for (size_t i = 0; i < items.size(); ++i) {
      items[i]->Place({area.left, top, area.right, top + heights[i]});
      top += heights[i] + Spacing();
    }
  }

  std::vector<int> ColumnWidths(int width) const {
    std::vector<int> widths(static_cast<size_t>(columns), 0);
    for (size_t i = 0; i < items.size(); ++i) {
      int& column = widths[i % widths.size()];
      column = std::max(column, items[i]->LeastWidth());
    }
    const int least = std::accumulate(widths.begin(), widths.end(), Spacing() * (columns - 1));
    widths.back() += std::max(0, width - least);
    return widths;
  }

  std::vector<int> RowHeights(const std::vector<int>& widths) const {
    std::vector<int> heights(static_cast<size_t>(Rows()), 0);
    for (size_t i = 0; i < items.size(); ++i) {
      int& row = heights[i / widths.size()];
      row = std::max(row, items[i]->HeightFor(widths[i % widths.size()]));
    }
    return heights;
  }

  void PlaceGrid(const RECT& area) {
    const std::vector<int> widths = ColumnWidths(area.right - area.left);
    std::vector<int> heights = RowHeights(widths);
    std::vector<int> shares(heights.size(), 0);
    for (size_t i = 0; i < items.size(); ++i) {
      int& share = shares[i / widths.size()];
      share = std::max(share, items[i]->stretch);
    }
    Deal(heights, shares,
         std::max<int>(0, area.bottom - area.top - HeightFor(area.right - area.left)));
    LONG top = area.top;
    for (size_t row = 0; row < heights.size(); ++row) {
      LONG left = area.left;
      for (size_t i = row * widths.size(); i < std::min(items.size(), (row + 1) * widths.size());
           ++i) {
        const int width = widths[i % widths.size()];
        items[i]->PlaceIn({left, top, left + width, top + heights[row]});
        left += width + Spacing();
      }
      top += heights[row] + Spacing();
    }
  }

  /// Centres an item in a row that is higher than it needs.
  void PlaceIn(RECT area) {
    const LONG spare = area.bottom - area.top - HeightFor(area.right - area.left);
    if (kind == Layout::Kind::kControl && !GrowsDown() && items.empty() && spare > 0) {
      area.top += spare / 2;
      area.bottom = area.top + HeightFor(area.right - area.left);
    }
    Place(area);
  }
};

namespace {

class Builder {
 public:
  Builder(WinContext& context, std::vector<WinControlPeer*>& peers)
      : context_(context), peers_(peers) {}

  std::unique_ptr<WinLayout::Node> Build(const Layout& layout, HWND parent) {
    auto node = std::unique_ptr<WinLayout::Node>(new WinLayout::Node{
        layout.kind, std::max(layout.columns, 1), layout.stretch, context_, nullptr, nullptr, {}});
    if (layout.kind == Layout::Kind::kControl) {
      BuildControl(*layout.control, parent, *node);
      return node;
    }
    for (const Layout& item : layout.items) node->items.push_back(Build(item, parent));
    return node;
  }

 private:
  void BuildControl(Control& control, HWND parent, WinLayout::Node& node) {
    node.peer = MakeWinPeer(control, parent, context_);
    node.tabs = dynamic_cast<WinTabs*>(node.peer.get());
    peers_.push_back(node.peer.get());
    const std::vector<const Layout*> contents = control.Contents();
    const std::vector<HWND> containers = node.peer->Containers();
    for (size_t i = 0; i < contents.size(); ++i) {
      node.items.push_back(Build(*contents[i], containers[i]));
    }
  }

  WinContext& context_;
  std::vector<WinControlPeer*>& peers_;
};

}  // namespace

WinLayout::WinLayout(const Layout& layout, HWND window, WinContext& context)
    : margin_(context.Scaled(kMargin)) {
  root_ = Builder(context, peers_).Build(layout, window);
}

WinLayout::~WinLayout() = default;

int WinLayout::LeastWidth() const { return root_->LeastWidth() + 2 * margin_; }

int WinLayout::LeastHeight(int width) const {
  return root_->HeightFor(width - 2 * margin_) + 2 * margin_;
}

void WinLayout::Place(const SIZE& area) {
  root_->Place({margin_, margin_, area.cx - margin_, area.cy - margin_});
}

}  // namespace vesko
