#include "desktop/windows/toolkit/WinText.h"

namespace vesko {

Text WindowText(HWND window) {
  Text text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, u'\0');
  const int length = GetWindowTextW(window, reinterpret_cast<wchar_t*>(text.data()),
                                    static_cast<int>(text.size()));
  text.resize(static_cast<size_t>(length));
  return text;
}

bool SetTextIfOther(HWND window, const std::wstring& text) {
  if (ToWide(WindowText(window)) == text) return false;
  SetWindowTextW(window, text.c_str());
  return true;
}

SIZE Measure(HFONT font, const std::wstring& text, int width, bool literal) {
  HDC screen = GetDC(nullptr);
  const HGDIOBJ before = SelectObject(screen, font);
  RECT rect = {0, 0, width, 0};
  UINT how = DT_CALCRECT | (width > 0 ? DT_WORDBREAK | DT_EDITCONTROL : 0u);
  if (literal) how |= DT_NOPREFIX;
  DrawTextW(screen, text.c_str(), -1, &rect, how);
  SelectObject(screen, before);
  ReleaseDC(nullptr, screen);
  return {rect.right, rect.bottom};
}

}  // namespace vesko
