// One number of every cell of a region, gathered from its areas for a picture.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "tool/pictures/Raster.h"

namespace tovrtool {

using NumberRange = std::pair<double, double>;

class GatheredNumbers {
 public:
  GatheredNumbers(const Rect& region, Merge merge) : raster_(region, merge) {}

  // Fills the numbers of row `y`, as many as the rectangle has columns.
  using ReadRow = std::function<void(std::int32_t y, double* numbers)>;

  // Whether nothing of the rectangle is left to add: areas may overlap, and what was stored first is what counts.
  bool covered(const Rect& rect) const;
  bool overlaps(const Rect& rect) const;
  // The cells of a rectangle that lie in no earlier one. REQUIRES: the region holds it.
  void add(const Rect& rect, const ReadRow& readRow);

  const Raster& raster() const { return raster_; }
  std::size_t count() const { return values_.size(); }  // of finite numbers
  NumberRange extremes() const;                         // 0, 0 without any

  // What colours are to span, never empty. The values at two percents, or all values where those are equal.
  NumberRange percentileRange(const NumberRange& percents) const;
  // Zero in its middle: as far as the given share of the numbers other than zero goes.
  NumberRange balancedRange(double percent) const;

 private:
  void hideCovered(const Rect& rect, std::int32_t y, std::vector<double>& numbers) const;

  Raster raster_;
  std::vector<Rect> added_;
  std::vector<double> values_;
};

}  // namespace tovrtool
