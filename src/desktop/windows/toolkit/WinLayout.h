#pragma once

#include <windows.h>

#include <vector>

#include "desktop/windows/toolkit/WinControlPeer.h"
#include "ui/Layout.h"

namespace vesko {

/// Builds the native controls of a window and gives them their places. All sizes are in device
/// pixels. Spare room goes to items by their stretch, and where none has any, to those that can
/// make use of it; the last of them gets the rest of a division.
class WinLayout {
 public:
  /// Window, context and the layout's controls must outlive it.
  WinLayout(const Layout& layout, HWND window, WinContext& context);
  ~WinLayout();

  /// The native controls, depth first, containers before their contents. They belong to the layout.
  const std::vector<WinControlPeer*>& Peers() const { return peers_; }

  /// Least size of the contents, margins included. The height depends on the width, as some texts
  /// wrap.
  int LeastWidth() const;
  int LeastHeight(int width) const;

  /// Lays the contents out over an area from the upper left corner of the window. In a smaller area
  /// than the least they run over its edges.
  void Place(const SIZE& area);

  struct Node;

 private:
  std::unique_ptr<Node> root_;
  std::vector<WinControlPeer*> peers_;
  int margin_;
};

}  // namespace vesko
