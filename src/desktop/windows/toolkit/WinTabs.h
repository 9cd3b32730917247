#pragma once

#include <windows.h>

#include <vector>

#include "desktop/windows/toolkit/WinControlPeer.h"

namespace vesko {

inline constexpr wchar_t kPageClass[] = L"VeskoPage";  // of a page of a tab control

/// The native side of a tab control: the strip of tabs and a window for each page, of which only
/// the current one is visible. The pages are siblings of the strip.
class WinTabs final : public WinPeerOf<TabControl> {
 public:
  WinTabs(TabControl& tabs, HWND parent, WinContext& context);
  ~WinTabs() override;

  std::vector<HWND> Containers() const override { return pages_; }

  bool GrowsSideways() const override { return true; }
  bool GrowsDown() const override { return true; }
  int LeastWidth() const override { return context_.Scaled(200); }
  int HeightFor(int) const override { return LineHeight() * 2; }

  /// What is left of an area for a page, beside the strip of tabs and the frame.
  RECT PageArea(RECT area) const;

  bool Notify(NMHDR& header, LRESULT& result) override;
  bool KeyPressedInWindow(WPARAM key) override;

 protected:
  void ShowState() override;

 private:
  static int StepOf(WPARAM key);
  void Turn(int tab);

  std::vector<HWND> pages_;
};

}  // namespace vesko
