// One number of every cell of a region, gathered from its areas for a picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "client/cells/CoveredCells.h"
#include "tool/pictures/Raster.h"

namespace tovrdb::tool {

using NumberRange = std::pair<double, double>;

// Ranges of colours: finite and never empty.
// From one percentile to another, or from minimum to maximum if those percentiles are equal.
NumberRange percentileRange(std::vector<double> values, const NumberRange& percents);
// Symmetric about zero: reaches the given percentile of the sizes of the numbers other than zero.
NumberRange balancedRange(const std::vector<double>& values, double percent);

class GatheredNumbers {
 public:
  GatheredNumbers(const Rect& region, Merge merge, const PixelLimits& limits = {}) : raster_(region, merge, limits) {}

  // Fills the numbers of a run's cells.
  using ReadRun = std::function<void(const CellRun& run, double* numbers)>;

  // The rectangles that were added. They may overlap; the first one counts.
  const CoveredCells& covered() const { return covered_; }
  // Adds the cells of a rectangle that lie in no earlier one. REQUIRES: the region holds the rectangle.
  void add(const Rect& rect, const ReadRun& readRun);
  void mark(std::int32_t x, std::int32_t y) { raster_.mark(x, y); }

  const Raster& raster() const { return raster_; }
  const std::vector<double>& values() const { return values_; }  // the finite ones
  NumberRange extremes() const;                                  // 0, 0 if there are none

 private:
  Raster raster_;
  CoveredCells covered_;
  std::vector<double> values_;
};

}  // namespace tovrdb::tool
