#pragma once

#include <utility>
#include <vector>

namespace vesko {

class Control;

/// Where the controls of a window stand: nested rows and columns. Margins, spacing and natural
/// sizes are the desktop's own. The order of the items, depth first, is the tab order. Items are
/// laid out from left to right and from top to bottom, and are as wide as the column or as high as
/// the row that they are in where they can make use of it.
struct Layout {
  /// What the layout is; the members say which kind each of them belongs to.
  enum class Kind { kControl, kRow, kColumn, kGrid, kSpace };

  Kind kind = Kind::kColumn;
  Control* control = nullptr;  // kControl; not owned
  std::vector<Layout> items;   // kRow, kColumn, kGrid
  int columns = 0;             // kGrid: items fill it row by row
  int stretch = 0;             // share of the spare room along the parent; 0: natural size
};

/// A control, which must outlive the layout.
inline Layout Item(Control& control, int stretch = 0) {
  return {Layout::Kind::kControl, &control, {}, 0, stretch};
}
/// Items side by side.
inline Layout Row(std::vector<Layout> items, int stretch = 0) {
  return {Layout::Kind::kRow, nullptr, std::move(items), 0, stretch};
}
/// Items one below the other.
inline Layout Column(std::vector<Layout> items, int stretch = 0) {
  return {Layout::Kind::kColumn, nullptr, std::move(items), 0, stretch};
}
/// Items fill the grid row by row; all columns are as wide as their widest item, and the last one
/// takes the spare room.
inline Layout Grid(int columns, std::vector<Layout> items, int stretch = 0) {
  return {Layout::Kind::kGrid, nullptr, std::move(items), columns, stretch};
}
/// Empty room; without a stretch it only fills a place in a grid.
inline Layout Space(int stretch = 1) { return {Layout::Kind::kSpace, nullptr, {}, 0, stretch}; }

}  // namespace vesko
