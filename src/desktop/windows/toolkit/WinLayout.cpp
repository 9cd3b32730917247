#include "desktop/windows/toolkit/WinLayout.h"

#include <uxtheme.h>

#include <algorithm>
#include <numeric>

#include "desktop/windows/toolkit/WinText.h"

namespace vesko {

namespace {

constexpr int kMargin = 9;   // logical pixels around a window, a box or a page
constexpr int kSpacing = 6;  // between two items

/// A page of a tab control: passes on what its controls say to the window that holds the tabs.
LRESULT CALLBACK PageProcedure(HWND page, UINT message, WPARAM wparam, LPARAM lparam) {
  switch (message) {
    case WM_COMMAND:
    case WM_NOTIFY:
      return SendMessageW(GetParent(page), message, wparam, lparam);
    case WM_ERASEBKGND: {
      RECT area;
      GetClientRect(page, &area);
      FillRect(reinterpret_cast<HDC>(wparam), &area,
               GetSysColorBrush(IsThemeActive() ? COLOR_WINDOW : COLOR_3DFACE));
      return 1;
    }
    case WM_CTLCOLORSTATIC:
      // A box that cannot be typed into asks like a label, but has a ground of its own.
      if (SendMessageW(reinterpret_cast<HWND>(lparam), WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) {
        return DefWindowProcW(page, message, wparam, lparam);
      }
      [[fallthrough]];
    case WM_CTLCOLORBTN: {
      const int colour = IsThemeActive() ? COLOR_WINDOW : COLOR_3DFACE;
      SetBkColor(reinterpret_cast<HDC>(wparam), GetSysColor(colour));
      return reinterpret_cast<LRESULT>(GetSysColorBrush(colour));
    }
    default:
      return DefWindowProcW(page, message, wparam, lparam);
  }
}

HWND MakePage(HWND parent, HINSTANCE instance) {
  RegisterWindowClass(kPageClass, instance, PageProcedure);
  return CreateWindowExW(WS_EX_CONTROLPARENT, kPageClass, L"", WS_CHILD | WS_CLIPCHILDREN, 0, 0, 0,
                         0, parent, nullptr, instance, nullptr);
}

class FramePeer final : public WinControlPeer {
 public:
  FramePeer(Frame& frame, HWND parent, WinContext& context)
      : WinControlPeer(frame, context), frame_(frame) {
    Create(parent, WC_BUTTONW, BS_GROUPBOX, WS_EX_TRANSPARENT);
  }
  bool TakesFocus() const override { return false; }
  bool GrowsSideways() const override { return true; }
  int LeastWidth() const override { return TextSize(frame_.Caption()).cx + context_.Scaled(24); }
  int HeightFor(int) const override { return LineHeight(); }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SetTextIfOther(Window(), OneLine(frame_.Caption()));
  }

 private:
  Frame& frame_;
};

class TabPeer final : public WinControlPeer {
 public:
  TabPeer(TabControl& tabs, HWND parent, WinContext& context)
      : WinControlPeer(tabs, context), tabs_(tabs) {
    Create(parent, WC_TABCONTROLW, WS_TABSTOP | WS_CLIPSIBLINGS);
    for (size_t i = 0; i < tabs.pages.size(); ++i) {
      std::wstring caption = OneLine(tabs.pages[i].caption);
      TCITEMW item = {};
      item.mask = TCIF_TEXT;
      item.pszText = caption.data();
      SendMessageW(Window(), TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&item));
      pages_.push_back(MakePage(parent, context.instance));
    }
  }
  ~TabPeer() override {
    for (HWND page : pages_) DestroyWindow(page);
  }

  const std::vector<HWND>& Pages() const { return pages_; }

  bool GrowsSideways() const override { return true; }
  bool GrowsDown() const override { return true; }
  int LeastWidth() const override { return context_.Scaled(200); }
  int HeightFor(int) const override { return LineHeight() * 2; }

  /// What the strip of tabs and the frame take of an area.
  RECT PageArea(RECT area) const {
    SendMessageW(Window(), TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
    return area;
  }

  bool Notify(NMHDR& header, LRESULT&) override {
    if (header.code != static_cast<UINT>(TCN_SELCHANGE)) return false;
    Turn(static_cast<int>(SendMessageW(Window(), TCM_GETCURSEL, 0, 0)));
    return true;
  }

  bool KeyPressedInWindow(WPARAM key) override {
    const int step = StepOf(key);
    const int count = static_cast<int>(pages_.size());
    if (step != 0) Turn((tabs_.Tab() + step + count) % count);
    return step != 0;
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    SendMessageW(Window(), TCM_SETCURSEL, static_cast<WPARAM>(tabs_.Tab()), 0);
    for (size_t i = 0; i < pages_.size(); ++i) {
      const bool current = static_cast<int>(i) == tabs_.Tab();
      ShowWindow(pages_[i], current ? SW_SHOWNA : SW_HIDE);
    }
  }

 private:
  static int StepOf(WPARAM key) {
    const int modifiers = ModifiersDown();
    if (!(modifiers & kControl)) return 0;
    if (key == VK_TAB) return modifiers & kShift ? -1 : 1;
    if (key == VK_NEXT) return 1;
    return key == VK_PRIOR ? -1 : 0;
  }

  /// A control of the page that goes does not keep the focus.
  void Turn(int tab) {
    if (IsChild(pages_[static_cast<size_t>(tabs_.Tab())], GetFocus())) SetFocus(Window());
    tabs_.Click(tab);
    Synchronise();
  }

  TabControl& tabs_;
  std::vector<HWND> pages_;
};

/// Spare room dealt out by shares; the last share gets the rest.
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

/// One item of the layout with what stands in it.
struct WinLayout::Node {
  Layout::Kind kind;
  int columns;
  int stretch;
  WinContext& context;
  WinPeerPtr peer;
  TabPeer* tabs = nullptr;
  std::vector<std::unique_ptr<Node>> items;  // of a frame: one; of tabs: one a page

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

  /// Width that frame or tabs take beside their content.
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
    // Behind its pages it cannot hide them; and it is the last to be reached by the Tab key.
    SetWindowPos(tabs->Window(), HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    for (size_t i = 0; i < items.size(); ++i) {
      SetWindowPos(tabs->Pages()[i], nullptr, page.left, page.top, width, height,
                   SWP_NOZORDER | SWP_NOACTIVATE);
      items[i]->Place({Margin(), Margin(), width - Margin(), height - Margin()});
    }
  }

  /// By stretch; where no item has any, to those that make use of the room.
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

  /// In the middle of a row that is higher than the item can use.
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

class Builder : private ControlVisitor {
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
    WinLayout::Node* const outer_node = std::exchange(node_, &node);
    const HWND outer_parent = std::exchange(parent_, parent);
    control.Accept(*this);
    node_ = outer_node;
    parent_ = outer_parent;
  }

  void Keep(WinPeerPtr peer) {
    peers_.push_back(peer.get());
    node_->peer = std::move(peer);
  }

  template <typename Kind>
  void Make(Kind& control) {
    Keep(MakeWinPeer(control, parent_, context_));
  }

  void Visit(Label& control) override { Make(control); }
  void Visit(CommandButton& control) override { Make(control); }
  void Visit(CheckBox& control) override { Make(control); }
  void Visit(TextBox& control) override { Make(control); }
  void Visit(ProgressBar& control) override { Make(control); }
  void Visit(ListBox& control) override { Make(control); }
  void Visit(ListView& control) override { Make(control); }

  void Visit(Frame& control) override {
    Keep(std::make_unique<FramePeer>(control, parent_, context_));
    node_->items.push_back(Build(control.content, parent_));
  }

  void Visit(TabControl& control) override {
    auto peer = std::make_unique<TabPeer>(control, parent_, context_);
    TabPeer& tabs = *peer;
    node_->tabs = &tabs;
    Keep(std::move(peer));
    for (size_t i = 0; i < control.pages.size(); ++i) {
      node_->items.push_back(Build(control.pages[i].content, tabs.Pages()[i]));
    }
  }

  WinContext& context_;
  std::vector<WinControlPeer*>& peers_;
  WinLayout::Node* node_ = nullptr;
  HWND parent_ = nullptr;
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
