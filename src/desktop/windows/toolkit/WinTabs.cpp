#include "desktop/windows/toolkit/WinTabs.h"

#include <uxtheme.h>

#include "desktop/common/ShownText.h"
#include "desktop/windows/toolkit/WinText.h"

namespace vesko {

namespace {

/// A page of a tab control: passes its controls' messages on to the window that holds the tabs.
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
      // A read-only or disabled box asks for colours like a label, but keeps its own background.
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

}  // namespace

WinTabs::WinTabs(TabControl& tabs, HWND parent, WinContext& context) : WinPeerOf(tabs, context) {
  Create(parent, WC_TABCONTROLW, WS_TABSTOP | WS_CLIPSIBLINGS);
  for (size_t i = 0; i < tabs.pages.size(); ++i) {
    std::wstring caption = ToWide(OneLine(tabs.pages[i].caption));
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    item.pszText = caption.data();
    SendMessageW(Window(), TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&item));
    pages_.push_back(MakePage(parent, context.instance));
  }
}

WinTabs::~WinTabs() {
  for (HWND page : pages_) DestroyWindow(page);
}

RECT WinTabs::PageArea(RECT area) const {
  SendMessageW(Window(), TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&area));
  return area;
}

bool WinTabs::Notify(NMHDR& header, LRESULT&) {
  if (header.code != static_cast<UINT>(TCN_SELCHANGE)) return false;
  Turn(static_cast<int>(SendMessageW(Window(), TCM_GETCURSEL, 0, 0)));
  return true;
}

bool WinTabs::KeyPressedInWindow(WPARAM key) {
  const int step = StepOf(key);
  const int count = static_cast<int>(pages_.size());
  if (step != 0) Turn((control_.Tab() + step + count) % count);
  return step != 0;
}

void WinTabs::ShowState() {
  WinControlPeer::ShowState();
  SendMessageW(Window(), TCM_SETCURSEL, static_cast<WPARAM>(control_.Tab()), 0);
  for (size_t i = 0; i < pages_.size(); ++i) {
    const bool current = static_cast<int>(i) == control_.Tab();
    ShowWindow(pages_[i], current ? SW_SHOWNA : SW_HIDE);
  }
}

int WinTabs::StepOf(WPARAM key) {
  const int modifiers = ModifiersDown();
  if (!(modifiers & kControl)) return 0;
  if (key == VK_TAB) return modifiers & kShift ? -1 : 1;
  if (key == VK_NEXT) return 1;
  return key == VK_PRIOR ? -1 : 0;
}

/// A control on the page that is hidden must not keep the focus.
void WinTabs::Turn(int tab) {
  if (IsChild(pages_[static_cast<size_t>(control_.Tab())], GetFocus())) SetFocus(Window());
  control_.Click(tab);
  Synchronise();
}

}  // namespace vesko
