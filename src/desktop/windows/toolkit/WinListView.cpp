#include <algorithm>
#include <array>
#include <string_view>

#include "desktop/common/ShownText.h"
#include "desktop/windows/toolkit/WinControls.h"
#include "desktop/windows/toolkit/WinImages.h"
#include "desktop/windows/toolkit/WinText.h"

namespace vesko {

namespace {

constexpr UINT kSelectionMessage = WM_APP + 1;
constexpr UINT_PTR kSubclass = 1;

class ListViewPeer final : public WinPeerOf<ListView> {
 public:
  ListViewPeer(ListView& list, HWND parent, WinContext& context)
      : WinPeerOf(list, context), images_(LoadMailImages(context)) {
    Create(parent, WC_LISTVIEWW,
           LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_SHAREIMAGELISTS | WS_TABSTOP,
           WS_EX_CLIENTEDGE);
    SetWindowTextW(Window(), ToWide(list.AccessibleName()).c_str());
    ListView_SetExtendedListViewStyle(Window(), LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
    ListView_SetImageList(Window(), images_.get(), LVSIL_SMALL);
    SetWindowSubclass(Window(), &Subclass, kSubclass, reinterpret_cast<DWORD_PTR>(this));
  }

  ~ListViewPeer() override { RemoveWindowSubclass(Window(), &Subclass, kSubclass); }

  bool GrowsSideways() const override { return true; }
  bool GrowsDown() const override { return true; }
  int LeastWidth() const override { return context_.Scaled(300); }
  int HeightFor(int) const override { return LineHeight() * 6 + context_.Scaled(30); }

  bool Notify(NMHDR& header, LRESULT& result) override {
    switch (header.code) {
      case LVN_GETDISPINFOW:
        Fill(reinterpret_cast<NMLVDISPINFOW&>(header).item);
        return true;
      case LVN_ITEMCHANGED:
      case LVN_ODSTATECHANGED:
        SelectionMoved();
        return true;
      case LVN_COLUMNCLICK:
        control_.ClickColumn(reinterpret_cast<NMLISTVIEW&>(header).iSubItem + 1);
        return true;
      case LVN_ODFINDITEMW:
        result = FindByText(reinterpret_cast<NMLVFINDITEMW&>(header));
        return true;
      default:
        return false;
    }
  }

  bool KeyPressed(WPARAM key) override {
    TakeSelection();
    return control_.PressKey(static_cast<int>(key), ModifiersDown());
  }

 protected:
  void ShowState() override {
    WinControlPeer::ShowState();
    showing_ = true;
    ShowColumns();
    if (rows_shown_ != control_.Generation()) ShowRows();
    if (selection_shown_ != control_.SelectionGeneration()) ShowSelection();
    showing_ = false;
    InvalidateRect(Window(), nullptr, FALSE);
  }

 private:
  static LRESULT CALLBACK Subclass(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                   UINT_PTR, DWORD_PTR self) {
    auto& peer = *reinterpret_cast<ListViewPeer*>(self);
    switch (message) {
      case WM_LBUTTONDOWN:
        peer.Pressed(kLeftButton, lparam);
        break;
      case WM_RBUTTONDOWN:
        // The handler selects the row and opens the menu; the list itself would wait for a drag.
        SetFocus(window);
        peer.Pressed(kRightButton, lparam);
        return 0;
      case WM_RBUTTONUP:
        return 0;
      case WM_CONTEXTMENU:
        peer.MenuByKeyboard();
        return 0;
      case kSelectionMessage:
        peer.TakeSelection();
        return 0;
    }
    return DefSubclassProc(window, message, wparam, lparam);
  }

  void Pressed(int button, LPARAM lparam) {
    TakeSelection();
    LVHITTESTINFO hit = {};
    hit.pt = {static_cast<SHORT>(LOWORD(lparam)), static_cast<SHORT>(HIWORD(lparam))};
    const int row = ListView_HitTest(Window(), &hit);
    control_.PressMouse(button, row >= 0 && row < control_.Count() ? row : -1);
  }

  void MenuByKeyboard() {
    const int row = control_.CurrentRow();
    if (row < 0) return;
    ListView_EnsureVisible(Window(), row, FALSE);
    RECT place = {};
    ListView_GetItemRect(Window(), row, &place, LVIR_LABEL);
    POINT corner = {place.left, place.bottom};
    ClientToScreen(Window(), &corner);
    context_.popup_place = corner;
    control_.PressMouse(kRightButton, row);
    context_.popup_place.reset();
  }

  void Fill(LVITEMW& item) {
    if (item.iItem < 0 || item.iItem >= control_.Count()) return;
    if (item.mask & LVIF_IMAGE) item.iImage = static_cast<int>(control_.StateAt(item.iItem));
    if ((item.mask & LVIF_TEXT) && item.cchTextMax > 0) {
      const std::wstring text = ToWide(OneLine(control_.CellAt(item.iItem, item.iSubItem)));
      lstrcpynW(item.pszText, text.c_str(), item.cchTextMax);
    }
  }

  /// Finds the next row that begins with what the user types.
  LRESULT FindByText(const NMLVFINDITEMW& search) const {
    if (!(search.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) || control_.Count() == 0) return -1;
    const std::wstring_view wanted(search.lvfi.psz);
    for (int step = 0; step < control_.Count(); ++step) {
      const int row = (search.iStart + step) % control_.Count();
      const std::wstring text = ToWide(OneLine(control_.CellAt(row, 0)));
      if (text.size() < wanted.size()) continue;
      const int length = static_cast<int>(wanted.size());
      if (CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, text.c_str(), length, wanted.data(),
                         length) == CSTR_EQUAL) {
        return row;
      }
    }
    return -1;
  }

  void ShowColumns() {
    const auto& columns = control_.Columns();
    if (columns_shown_ != columns.size()) {
      while (ListView_DeleteColumn(Window(), 0)) {
      }
      for (size_t i = 0; i < columns.size(); ++i) {
        std::wstring header = ToWide(OneLine(columns[i].header));
        LVCOLUMNW column = {};
        column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
        column.pszText = header.data();
        column.cx = context_.Scaled(columns[i].width);
        column.iSubItem = static_cast<int>(i);
        SendMessageW(Window(), LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
      }
      columns_shown_ = columns.size();
    }
    ShowSortArrow();
  }

  void ShowSortArrow() {
    const HWND header = ListView_GetHeader(Window());
    for (int i = 0; i < static_cast<int>(columns_shown_); ++i) {
      HDITEMW item = {};
      item.mask = HDI_FORMAT;
      SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
      const int before = item.fmt;
      item.fmt &= ~(HDF_SORTUP | HDF_SORTDOWN);
      if (control_.Sorted() && control_.SortKey() == i) {
        item.fmt |= control_.SortDescending() ? HDF_SORTDOWN : HDF_SORTUP;
      }
      if (item.fmt == before) continue;
      SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    }
  }

  void ShowRows() {
    rows_shown_ = control_.Generation();
    selection_shown_ = control_.SelectionGeneration() - 1;
    ListView_SetItemCountEx(Window(), control_.Count(), LVSICF_NOSCROLL);
  }

  void ShowSelection() {
    selection_shown_ = control_.SelectionGeneration();
    int selected = 0;
    for (int i = 0; i < control_.Count(); ++i) selected += control_.Selected(i);
    // Sets all rows at once to what most of them are, then the others one by one.
    const bool most = selected * 2 > control_.Count();
    ListView_SetItemState(Window(), -1, most ? LVIS_SELECTED : 0, LVIS_SELECTED);
    for (int i = 0; i < control_.Count(); ++i) {
      if (control_.Selected(i) == most) continue;
      ListView_SetItemState(Window(), i, most ? 0 : LVIS_SELECTED, LVIS_SELECTED);
    }
    ListView_SetItemState(Window(), -1, 0, LVIS_FOCUSED);
    if (control_.CurrentRow() < 0) return;
    ListView_SetItemState(Window(), control_.CurrentRow(), LVIS_FOCUSED, LVIS_FOCUSED);
    ListView_SetSelectionMark(Window(), control_.CurrentRow());
    ListView_EnsureVisible(Window(), control_.CurrentRow(), FALSE);
  }

  /// Selecting many rows sends a message for each; the selection is read once, after the last.
  void SelectionMoved() {
    if (showing_ || selection_pending_) return;
    selection_pending_ = true;
    PostMessageW(Window(), kSelectionMessage, 0, 0);
  }

  void TakeSelection() {
    if (!selection_pending_) return;
    selection_pending_ = false;
    std::vector<std::pair<int, int>> ranges;
    for (int row = -1; (row = ListView_GetNextItem(Window(), row, LVNI_SELECTED)) >= 0;) {
      if (!ranges.empty() && ranges.back().second == row - 1) {
        ranges.back().second = row;
      } else {
        ranges.emplace_back(row, row);
      }
    }
    const int focused = ListView_GetNextItem(Window(), -1, LVNI_FOCUSED);
    const bool moved = focused != control_.CurrentRow();
    control_.TakeSelection(ranges, focused);
    selection_shown_ = control_.SelectionGeneration();
    if (moved && focused >= 0 && control_.on_item_click) control_.on_item_click(focused);
  }

  ImageListPtr images_;
  uint64_t rows_shown_ = ~uint64_t{0};
  uint64_t selection_shown_ = ~uint64_t{0};
  size_t columns_shown_ = 0;
  bool showing_ = false;
  bool selection_pending_ = false;
};

}  // namespace

WinPeerPtr MakeListViewPeer(ListView& control, HWND parent, WinContext& context) {
  return std::make_unique<ListViewPeer>(control, parent, context);
}

}  // namespace vesko
