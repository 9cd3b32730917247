#pragma once

#include <windows.h>

#include <vector>

#include "desktop/windows/toolkit/WinControlPeer.h"

namespace vesko {

/// Window class of the pages.
inline constexpr wchar_t kPageClass[] = L"VeskoPage";

/// The native side of a tab control: the strip of tabs and a window for each page, of which only
/// the current one is visible. The pages are siblings of the strip, and what their controls tell
/// their parent, the pages pass on to the window that holds them.
class WinTabs final : public WinPeerOf<TabControl> {
 public:
  WinTabs(TabControl& tabs, HWND parent, WinContext& context);
  ~WinTabs() override;

  /// The pages. Their places are the layout's business.
  std::vector<HWND> Containers() const override { return pages_; }

  bool GrowsSideways() const override { return true; }
  bool GrowsDown() const override { return true; }
  int LeastWidth() const override { return context_.Scaled(200); }
  int HeightFor(int) const override { return LineHeight() * 2; }

  /// What is left of an area for a page, beside the strip of tabs and the frame.
  RECT PageArea(RECT area) const;

  /// The user has turned to a page.
  bool Notify(NMHDR& header, LRESULT& result) override;
  /// Control with Tab, Shift and Tab, Page Down or Page Up turns the pages, round and round.
  bool KeyPressedInWindow(WPARAM key) override;

 protected:
  void ShowState() override;

 private:
  /// 1 for the next page, -1 for the one before, 0 for other keys.
  static int StepOf(WPARAM key);
  void Turn(int tab);

  std::vector<HWND> pages_;
};

}  // namespace vesko
