#include "desktop/windows/toolkit/WinControlPeer.h"

#include <cmath>

#include "desktop/common/ShownText.h"
#include "desktop/windows/toolkit/WinText.h"

namespace vesko {

void RegisterWindowClass(const wchar_t* name, HINSTANCE module, WNDPROC procedure) {
  WNDCLASSW description = {};
  description.lpfnWndProc = procedure;
  description.hInstance = module;
  description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  description.hbrBackground = GetSysColorBrush(COLOR_3DFACE);
  description.lpszClassName = name;
  RegisterClassW(&description);  // fails harmlessly from the second time on
}

WinControlPeer::~WinControlPeer() {
  base_.SetPeer(nullptr);
  if (window_) DestroyWindow(window_);
  if (font_) DeleteObject(font_);
}

void WinControlPeer::Create(HWND parent, const wchar_t* window_class, DWORD style,
                            DWORD extended_style) {
  window_ = CreateWindowExW(extended_style, window_class, L"", WS_CHILD | WS_VISIBLE | style, 0, 0,
                            0, 0, parent, nullptr, context_.instance, nullptr);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  base_.SetPeer(this);
  ShowFont();
  MarkChanged();
}

void WinControlPeer::ShowFont() {
  const Font& font = base_.GetFont();
  if (font_ && font.name == font_name_ && font.size == font_size_) return;
  font_name_ = font.name;
  font_size_ = font.size;
  LOGFONTW description = {};
  description.lfHeight = -static_cast<LONG>(std::lround(font.size * context_.dots_per_inch / 72.0));
  description.lfCharSet = DEFAULT_CHARSET;
  const std::wstring face = ToWide(font.name).substr(0, LF_FACESIZE - 1);
  std::copy(face.begin(), face.end(), description.lfFaceName);
  const HFONT before = font_;
  font_ = CreateFontIndirectW(&description);
  SendMessageW(window_, WM_SETFONT, reinterpret_cast<WPARAM>(font_), TRUE);
  if (before) DeleteObject(before);
}

void WinControlPeer::ShowState() {
  ShowFont();
  if (!base_.Enabled() && GetFocus() == window_) PassFocusOn();
  if ((IsWindowEnabled(window_) != FALSE) != base_.Enabled()) {
    EnableWindow(window_, base_.Enabled());
  }
  const bool visible = (GetWindowLongPtrW(window_, GWL_STYLE) & WS_VISIBLE) != 0;
  if (visible != base_.Visible()) ShowWindow(window_, base_.Visible() ? SW_SHOWNA : SW_HIDE);
}

void WinControlPeer::Place(const RECT& place) {
  SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
               place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
}

void WinControlPeer::Refresh() {
  Synchronise();
  UpdateWindow(window_);
}

void WinControlPeer::TakeFocus() {
  Synchronise();
  SetFocus(window_);
}

void WinControlPeer::PassFocusOn() {
  SetFocus(GetNextDlgTabItem(GetAncestor(window_, GA_ROOT), window_, FALSE));
}

int WinControlPeer::LineHeight() const { return Measure(font_, L"Ag", 0, true).cy; }

SIZE WinControlPeer::TextSize(TextView text, bool literal) const {
  return Measure(font_, ToWide(OneLine(text)), 0, literal);
}

int ModifiersDown() {
  int modifiers = 0;
  if (GetKeyState(VK_SHIFT) < 0) modifiers |= kShift;
  if (GetKeyState(VK_CONTROL) < 0) modifiers |= kControl;
  if (GetKeyState(VK_MENU) < 0) modifiers |= kAlt;
  return modifiers;
}

}  // namespace vesko
