#include <windows.h>

#include "desktop/ToolkitFixture.h"
// After windows.h, whose types it uses.
#include <commctrl.h>

#include <cstring>
#include <deque>

#include "desktop/windows/WindowsDesktop.h"
#include "desktop/windows/toolkit/WinControlPeer.h"
#include "desktop/windows/toolkit/WinForm.h"
#include "desktop/windows/toolkit/WinText.h"

namespace vesko {
namespace {

HWND WindowOf(const Control& control) {
  return dynamic_cast<WinControlPeer&>(*control.Peer()).Window();
}

HWND Root(const Control& control) { return GetAncestor(WindowOf(control), GA_ROOT); }

Rect RectOf(const RECT& rect) {
  return {static_cast<int>(rect.left), static_cast<int>(rect.top),
          static_cast<int>(rect.right - rect.left), static_cast<int>(rect.bottom - rect.top)};
}

RECT PlaceInWindow(HWND control, HWND root) {
  RECT place;
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, root, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

Text TooltipOf(HWND control, HWND root) {
  for (HWND tips = nullptr;
       (tips = FindWindowExW(nullptr, tips, TOOLTIPS_CLASSW, nullptr)) != nullptr;) {
    if (GetWindow(tips, GW_OWNER) != root) continue;
    wchar_t text[200] = {};
    TTTOOLINFOW tool = {};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.hwnd = root;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = text;
    SendMessageW(tips, TTM_GETTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    return reinterpret_cast<const char16_t*>(text);
  }
  return {};
}

Font FontOf(HWND control) {
  LOGFONTW font = {};
  GetObjectW(reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)), sizeof font, &font);
  HDC screen = GetDC(nullptr);
  const double points = -font.lfHeight * 72.0 / GetDeviceCaps(screen, LOGPIXELSY);
  ReleaseDC(nullptr, screen);
  return {reinterpret_cast<const char16_t*>(font.lfFaceName), points};
}

std::deque<std::function<void()>>& Steps() {
  static std::deque<std::function<void()>> steps;
  return steps;
}

void CALLBACK RunStep(HWND, UINT, UINT_PTR timer, DWORD) {
  KillTimer(nullptr, timer);
  const auto step = std::move(Steps().front());
  Steps().pop_front();
  step();
}

}  // namespace

std::unique_ptr<Toolkit> MakeTestToolkit() {
  static EventSources sources;
  return MakeWinToolkit(sources);
}

Shown LookAt(const Control& control) {
  const HWND window = WindowOf(control);
  return {.place = RectOf(PlaceInWindow(window, Root(control))),
          .visible = IsWindowVisible(window) != FALSE,
          .enabled = IsWindowEnabled(window) != FALSE,
          .text = WindowText(window),
          .tooltip = TooltipOf(window, Root(control)),
          .font = FontOf(window)};
}

std::vector<int> ColumnWidths(const ListView& list) {
  const HWND window = WindowOf(list);
  std::vector<int> widths;
  const int count = Header_GetItemCount(ListView_GetHeader(window));
  for (int i = 0; i < count; ++i) widths.push_back(ListView_GetColumnWidth(window, i));
  return widths;
}

void PasteBeforeLast(const TextBox& box, const Text& text) {
  const HWND edit = WindowOf(box);
  const size_t size = (text.size() + 1) * sizeof(char16_t);
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  std::memcpy(GlobalLock(memory), text.c_str(), size);
  GlobalUnlock(memory);
  OpenClipboard(edit);
  EmptyClipboard();
  SetClipboardData(CF_UNICODETEXT, memory);
  CloseClipboard();
  const int place = GetWindowTextLengthW(edit) - 1;
  SendMessageW(edit, EM_SETSEL, static_cast<WPARAM>(place), place);
  SendMessageW(edit, WM_PASTE, 0, 0);
}

bool WindowIsShown(const Control& control) { return IsWindowVisible(Root(control)) != FALSE; }

Text CaptionOfWindow(const Control& control) { return WindowText(Root(control)); }

Rect BoundsOfWindow(const Control& control) {
  RECT bounds;
  GetWindowRect(Root(control), &bounds);
  return RectOf(bounds);
}

void MoveWindowOf(const Control& control, const Rect& bounds) {
  MoveWindow(Root(control), bounds.left, bounds.top, bounds.width, bounds.height, TRUE);
}

Text SomeFontFace() { return u"Courier New"; }

void Soon(std::function<void()> step) {
  Steps().push_back(std::move(step));
  SetTimer(nullptr, 0, 0, RunStep);
}

void CloseBox() { EndDialog(FindWindowW(L"#32770", nullptr), IDOK); }

int NativeWindows() {
  int windows = 0;
  for (HWND window = nullptr; (window = FindWindowExW(nullptr, window, kFormClass, nullptr));) {
    ++windows;
  }
  return windows;
}

}  // namespace vesko
