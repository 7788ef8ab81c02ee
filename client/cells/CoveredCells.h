// Which cells rectangles cover, and how many of the rectangles overlap.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "client/cells/Rect.h"

namespace tovrdb {

// Columns of one row, both ends inclusive.
struct CellRun {
  std::int32_t y = 0;
  std::int32_t left = 0;
  std::int32_t right = 0;
};

// The cells that rectangles have covered so far. The work grows with the rows that are added, not with the number of
// rectangles that were added before.
class CoveredCells {
 public:
  // Whether each, or at least one, of the rectangle's cells is covered.
  bool holds(const Rect& rect) const;
  bool meets(const Rect& rect) const;

  // Covers a rectangle; calls `fresh` row by row with the runs of its cells that were not covered before.
  void add(const Rect& rect, const std::function<void(const CellRun&)>& fresh);
  // The runs of the rectangle's cells that are not covered.
  void visitOpen(const Rect& rect, const std::function<void(const CellRun&)>& visit) const;

 private:
  using Runs = std::map<std::int32_t, std::int32_t>;  // left -> right; runs neither meet nor adjoin

  static void visitGaps(const Runs& runs, const CellRun& row, const std::function<void(const CellRun&)>& visit);
  static void cover(Runs& runs, const CellRun& row);

  std::map<std::int32_t, Runs> rows_;
};

struct Overlaps {
  std::uint64_t pairs = 0;
  std::vector<std::pair<std::size_t, std::size_t>> named;  // some of them by index, the lower one first
};

// Counts every pair and names at most `mostNamed`, in the order in which a line that sweeps down meets them. Rectangles
// without cells overlap nothing. Takes O(n log n) steps, and O(n) more for each pair that is named.
//
// When the sweep meets a rectangle, the open ones that end left of it or begin right of it are counted with two Fenwick
// trees (P. Fenwick: A New Data Structure for Cumulative Frequency Tables, 1994); all other open ones overlap it.
Overlaps overlapsAmong(const std::vector<Rect>& rects, std::size_t mostNamed);

}  // namespace tovrdb
