// One number of every cell of a region, gathered from its areas for a picture.
#pragma once

#include <cstddef>
#include <cstdint>
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

  // Adds the numbers of one run of cells. REQUIRES: the region holds the run, and no earlier run has cells of it.
  void add(const CellRun& run, const std::vector<double>& numbers);
  void mark(std::int32_t x, std::int32_t y) { raster_.mark(x, y); }

  const Raster& raster() const { return raster_; }
  const std::vector<double>& values() const { return values_; }  // the finite ones
  NumberRange extremes() const;                                  // 0, 0 if there are none

 private:
  Raster raster_;
  std::vector<double> values_;
};

}  // namespace tovrdb::tool
