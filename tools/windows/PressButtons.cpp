#include <windows.h>
// After windows.h, whose types it uses.
#include <commctrl.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

// Plays the user: waits for each of the buttons named, one after the other, in whichever window it
// appears, tells that window's title and presses it. Ends with 1 when one does not come in time.
// An amount of list rows is told with the title, for who wants to know what the user would see.
// "--half-way" in place of a caption waits until a progress bar has come so far.

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

bool IsHalfWay(HWND bar) {
  const LRESULT maximum = SendMessageW(bar, PBM_GETRANGE, FALSE, 0);
  return maximum > 1 && SendMessageW(bar, PBM_GETPOS, 0, 0) * 2 >= maximum;
}

struct Search {
  std::function<bool(HWND)> fits;
  HWND found;
};

BOOL CALLBACK SeeChild(HWND child, LPARAM parameter) {
  auto& search = *reinterpret_cast<Search*>(parameter);
  const bool fits = IsWindowVisible(child) && search.fits(child);
  if (fits) search.found = child;
  return !fits;
}

BOOL CALLBACK SeeWindow(HWND window, LPARAM parameter) {
  // A window under a modal one is disabled; its buttons are not to be had.
  if (IsWindowVisible(window) && IsWindowEnabled(window)) {
    EnumChildWindows(window, &SeeChild, parameter);
  }
  return reinterpret_cast<Search*>(parameter)->found == nullptr;
}

HWND Await(Search search, ULONGLONG deadline) {
  for (;;) {
    EnumWindows(&SeeWindow, reinterpret_cast<LPARAM>(&search));
    if (search.found || GetTickCount64() >= deadline) return search.found;
    Sleep(kPollMilliseconds);
  }
}

HWND AwaitButton(const std::wstring& caption, ULONGLONG deadline) {
  const auto fits = [&](HWND child) {
    return IsOfClass(child, WC_BUTTONW) && IsWindowEnabled(child) && TextOf(child) == caption;
  };
  return Await({fits, nullptr}, deadline);
}

HWND AwaitHalfWay(ULONGLONG deadline) {
  const auto fits = [](HWND child) {
    return IsOfClass(child, PROGRESS_CLASSW) && IsHalfWay(child);
  };
  return Await({fits, nullptr}, deadline);
}

BOOL CALLBACK TellRows(HWND child, LPARAM) {
  if (!IsOfClass(child, WC_LISTVIEWW)) return TRUE;
  std::printf("rows: %d\n", static_cast<int>(SendMessageW(child, LVM_GETITEMCOUNT, 0, 0)));
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
    const bool half_way = caption == "--half-way";
    const HWND found = half_way
                           ? AwaitHalfWay(deadline)
                           : AwaitButton(std::wstring(caption.begin(), caption.end()), deadline);
    if (!found) {
      std::fprintf(stderr, "no %s\n", arguments[i]);
      return 1;
    }
    if (half_way) continue;
    Press(found);
    AwaitGone(found, deadline);
  }
  return 0;
}
