#include "desktop/windows/toolkit/WinText.h"

#include <algorithm>

namespace vesko {

namespace {
constexpr size_t kLongestLine = 1000;

bool IsControl(char16_t c) { return c < 32 || (c >= 0x7F && c < 0xA0); }
}  // namespace

std::wstring OneLine(TextView text) {
  std::wstring line = ToWide(text.substr(0, kLongestLine));
  std::replace_if(
      line.begin(), line.end(), [](wchar_t c) { return IsControl(static_cast<char16_t>(c)); },
      L' ');
  return line;
}

std::wstring Lines(TextView text, size_t longest) {
  text = text.substr(0, longest);
  std::wstring lines;
  lines.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t c = text[i];
    if (c == u'\r' || c == u'\n') {
      lines += L"\r\n";
      if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    } else {
      lines += IsControl(c) && c != u'\t' ? L' ' : static_cast<wchar_t>(c);
    }
  }
  return lines;
}

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
