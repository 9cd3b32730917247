// Native windows as the system's messages find them.

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>

#include "desktop/windows/WindowsDesktop.h"
#include "support/AnyForm.h"

namespace vesko {
namespace {

void PutOnClipboard(const std::wstring& text) {
  const size_t size = (text.size() + 1) * sizeof(wchar_t);
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  std::memcpy(GlobalLock(memory), text.c_str(), size);
  GlobalUnlock(memory);
  ASSERT_TRUE(OpenClipboard(nullptr));
  EmptyClipboard();
  SetClipboardData(CF_UNICODETEXT, memory);
  CloseClipboard();
}

TEST(WinToolkitTest, ABoxOfOneLineTakesOneLineByWhicheverWay) {
  EventSources sources;
  const auto toolkit = MakeWinToolkit(sources);
  const std::pair<const char*, std::function<void(HWND, const wchar_t*)>> ways[] = {
      {"paste",
       [](HWND edit, const wchar_t* text) {
         PutOnClipboard(text);
         SendMessageW(edit, WM_PASTE, 0, 0);
       }},
      {"replace", [](HWND edit, const wchar_t* text) {
         SendMessageW(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(text));
       }}};
  for (const auto& [name, enter] : ways) {
    SCOPED_TRACE(name);
    AnyForm form(*toolkit);
    TextBox box(form, "txt");
    box.SetText(u"[]");
    form.While([&] {
      const HWND edit = FindWindowExW(GetActiveWindow(), nullptr, L"EDIT", nullptr);
      ASSERT_NE(edit, nullptr);
      for (const wchar_t* text : {L"pw\r\nDELE 1", L"d\n", L"\t\x2028x"}) {
        const int end = GetWindowTextLengthW(edit) - 1;
        SendMessageW(edit, EM_SETSEL, static_cast<WPARAM>(end), end);
        enter(edit, text);
        box.Refresh();
      }
      wchar_t shown[20];
      GetWindowTextW(edit, shown, 20);
      EXPECT_EQ(box.GetText(), u"[pwd]");
      EXPECT_EQ(std::wstring(shown), L"[pwd]");
      SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L"set\r\nby a program"));
      EXPECT_EQ(box.GetText(), u"set");
    });
  }
}

}  // namespace
}  // namespace vesko
