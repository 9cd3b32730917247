#pragma once

#include <utility>
#include <vector>

namespace vesko {

class Control;

/// Where the controls of a window stand: nested rows and columns. Spacing is the desktop's own.
/// The order of the items, depth first, is the tab order.
struct Layout {
  enum class Kind { kControl, kRow, kColumn, kGrid, kSpace };

  Kind kind = Kind::kColumn;
  Control* control = nullptr;  // kControl; not owned
  std::vector<Layout> items;   // kRow, kColumn, kGrid
  int columns = 0;             // kGrid: items fill it row by row
  int stretch = 0;             // share of the spare room along the parent; 0: natural size
};

inline Layout Item(Control& control, int stretch = 0) {
  return {Layout::Kind::kControl, &control, {}, 0, stretch};
}
inline Layout Row(std::vector<Layout> items, int stretch = 0) {
  return {Layout::Kind::kRow, nullptr, std::move(items), 0, stretch};
}
inline Layout Column(std::vector<Layout> items, int stretch = 0) {
  return {Layout::Kind::kColumn, nullptr, std::move(items), 0, stretch};
}
/// The last column takes the spare room.
inline Layout Grid(int columns, std::vector<Layout> items, int stretch = 0) {
  return {Layout::Kind::kGrid, nullptr, std::move(items), columns, stretch};
}
inline Layout Space(int stretch = 1) { return {Layout::Kind::kSpace, nullptr, {}, 0, stretch}; }

}  // namespace vesko
