// Which cells rectangles have covered so far, where the first one counts.
#pragma once

#include <cstdint>
#include <functional>
#include <map>

#include "client/cells/Rect.h"

namespace tovrdb {

// Columns of one row, both ends inclusive.
struct CellRun {
  std::int32_t y = 0;
  std::int32_t left = 0;
  std::int32_t right = 0;
};

// The work grows with the rows of what is added, not with the rectangles that were added before.
class CoveredCells {
 public:
  // Whether each, or at least one, of the rectangle's cells is covered.
  bool holds(const Rect& rect) const;
  bool meets(const Rect& rect) const;

  // Covers a rectangle; `fresh` gets, row by row, the runs of its cells that were not covered before.
  void add(const Rect& rect, const std::function<void(const CellRun&)>& fresh);
  // The runs of the rectangle's cells that are not covered.
  void visitOpen(const Rect& rect, const std::function<void(const CellRun&)>& visit) const;

 private:
  using Runs = std::map<std::int32_t, std::int32_t>;  // left -> right; apart from one another, none adjoining

  static void visitGaps(const Runs& runs, const CellRun& row, const std::function<void(const CellRun&)>& visit);
  static void cover(Runs& runs, const CellRun& row);

  std::map<std::int32_t, Runs> rows_;
};

}  // namespace tovrdb
