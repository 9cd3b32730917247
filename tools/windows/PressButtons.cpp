#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

// Plays the user: waits for each of the buttons named, one after the other, in whichever window it
// appears, tells that window's title and presses it. Ends with 1 when one does not come in time.
// An amount of list rows is told with the title, for who wants to know what the user would see.

namespace {

constexpr DWORD kPollMilliseconds = 50;

std::wstring TextOf(HWND window) {
  wchar_t text[512];
  return std::wstring(text, static_cast<size_t>(GetWindowTextW(window, text, 512)));
}

bool IsOfClass(HWND window, const wchar_t* name) {
  wchar_t found[64] = {};
  GetClassNameW(window, found, 64);
  return lstrcmpiW(found, name) == 0;
}

struct Search {
  std::wstring caption;
  HWND button;
};

BOOL CALLBACK SeeChild(HWND child, LPARAM parameter) {
  auto& search = *reinterpret_cast<Search*>(parameter);
  const bool fits = IsOfClass(child, L"Button") && IsWindowVisible(child) &&
                    IsWindowEnabled(child) && TextOf(child) == search.caption;
  if (fits) search.button = child;
  return !fits;
}

BOOL CALLBACK SeeWindow(HWND window, LPARAM parameter) {
  // A window under a modal one is disabled; its buttons are not to be had.
  if (IsWindowVisible(window) && IsWindowEnabled(window)) {
    EnumChildWindows(window, &SeeChild, parameter);
  }
  return reinterpret_cast<Search*>(parameter)->button == nullptr;
}

HWND FindButton(const std::wstring& caption) {
  Search search = {caption, nullptr};
  EnumWindows(&SeeWindow, reinterpret_cast<LPARAM>(&search));
  return search.button;
}

HWND AwaitButton(const std::wstring& caption, ULONGLONG deadline) {
  for (;;) {
    if (HWND button = FindButton(caption)) return button;
    if (GetTickCount64() >= deadline) return nullptr;
    Sleep(kPollMilliseconds);
  }
}

BOOL CALLBACK TellRows(HWND child, LPARAM) {
  constexpr UINT kGetItemCount = 0x1004;  // LVM_GETITEMCOUNT
  if (!IsOfClass(child, L"SysListView32")) return TRUE;
  std::printf("rows: %d\n", static_cast<int>(SendMessageW(child, kGetItemCount, 0, 0)));
  return FALSE;
}

std::string Narrow(const std::wstring& text) {
  std::string narrow(text.size() * 4, '\0');
  const int size =
      WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), narrow.data(),
                          static_cast<int>(narrow.size()), nullptr, nullptr);
  narrow.resize(static_cast<size_t>(size));
  return narrow;
}

void Press(HWND button) {
  const HWND window = GetAncestor(button, GA_ROOT);
  std::printf("window: %s\n", Narrow(TextOf(window)).c_str());
  EnumChildWindows(window, &TellRows, 0);
  std::fflush(stdout);
  PostMessageW(button, BM_CLICK, 0, 0);
}

/// The window answers a click in its own time, and must not be clicked twice for it.
void AwaitGone(HWND button, ULONGLONG deadline) {
  while (IsWindowVisible(button) && GetTickCount64() < deadline) Sleep(kPollMilliseconds);
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 3) {
    std::fputs("usage: vesko-press-buttons <seconds> <caption>...\n", stderr);
    return 2;
  }
  const ULONGLONG deadline =
      GetTickCount64() + static_cast<ULONGLONG>(std::atoi(arguments[1])) * 1000;
  for (int i = 2; i < count; ++i) {
    const std::string caption = arguments[i];
    const HWND button = AwaitButton(std::wstring(caption.begin(), caption.end()), deadline);
    if (!button) {
      std::fprintf(stderr, "no button %s\n", arguments[i]);
      return 1;
    }
    Press(button);
    AwaitGone(button, deadline);
  }
  return 0;
}
