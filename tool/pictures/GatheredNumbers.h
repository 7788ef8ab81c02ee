// One number of every cell of a region, gathered from its areas for a picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "tool/cells/CoveredCells.h"
#include "tool/pictures/Raster.h"

namespace tovrtool {

using NumberRange = std::pair<double, double>;

class GatheredNumbers {
 public:
  GatheredNumbers(const Rect& region, Merge merge) : raster_(region, merge) {}

  // Fills the numbers of a run's cells.
  using ReadRun = std::function<void(const CellRun& run, double* numbers)>;

  // What was added: rectangles may overlap, and the first one counts.
  const CoveredCells& covered() const { return covered_; }
  // The cells of a rectangle that lie in no earlier one. REQUIRES: the region holds it.
  void add(const Rect& rect, const ReadRun& readRun);

  const Raster& raster() const { return raster_; }
  std::size_t count() const { return values_.size(); }  // of finite numbers
  NumberRange extremes() const;                         // 0, 0 without any

  // What colours are to span, never empty. The values at two percents, or all values where those are equal.
  NumberRange percentileRange(const NumberRange& percents) const;
  // Zero in its middle: as far as the given share of the numbers other than zero goes.
  NumberRange balancedRange(double percent) const;

 private:
  Raster raster_;
  CoveredCells covered_;
  std::vector<double> values_;
};

}  // namespace tovrtool
