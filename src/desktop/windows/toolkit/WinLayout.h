#pragma once

#include <windows.h>

#include <vector>

#include "desktop/windows/toolkit/WinControlPeer.h"
#include "ui/Layout.h"

namespace vesko {

/// Builds the native controls of a window and gives them their places.
class WinLayout {
 public:
  WinLayout(const Layout& layout, HWND window, WinContext& context);
  ~WinLayout();

  /// Depth first, containers before their content.
  const std::vector<WinControlPeer*>& Peers() const { return peers_; }

  /// Least size of the content, margins included, in device pixels.
  int LeastWidth() const;
  int LeastHeight(int width) const;

  /// Lays the content out over an area of the window.
  void Place(const SIZE& area);

  struct Node;

 private:
  std::unique_ptr<Node> root_;
  std::vector<WinControlPeer*> peers_;
  int margin_;
};

}  // namespace vesko
