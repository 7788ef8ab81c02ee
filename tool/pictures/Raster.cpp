#include "tool/pictures/Raster.h"

#include <algorithm>
#include <cmath>

namespace tovrdb::tool {
namespace {

constexpr std::int64_t kLeast = 48;        // pixels of the shorter side
constexpr std::int64_t kLargestCell = 48;  // pixels

std::int64_t roundedUp(std::int64_t number, std::int64_t divisor) { return (number + divisor - 1) / divisor; }

// One scale for both axes keeps cells square; a side that would be thinner than kLeast gets one of its own.
AxisScale axis(std::int64_t cells, std::int64_t cellsPerPixel, std::int64_t pixelsPerCell) {
  if (roundedUp(cells, cellsPerPixel) * pixelsPerCell < kLeast) {
    cellsPerPixel = std::max<std::int64_t>(1, cells / kLeast);
    pixelsPerCell = cellsPerPixel > 1 ? 1 : roundedUp(kLeast, cells);
  }
  return {cells, cellsPerPixel, static_cast<int>(pixelsPerCell)};
}

}  // namespace

RasterScale fitScale(const Rect& region, const PixelLimits& limits) {
  const std::int64_t columns = columnsOf(region);
  const std::int64_t rows = rowsOf(region);
  const std::int64_t shrink = std::max(roundedUp(columns, limits.across), roundedUp(rows, limits.down));
  const std::int64_t grow =
      std::clamp<std::int64_t>(std::min(limits.across / columns, limits.down / rows), 1, kLargestCell);
  return {axis(columns, shrink, grow), axis(rows, shrink, grow)};
}

Raster::Raster(const Rect& region, Merge merge, const PixelLimits& limits)
    : region_(region),
      scale_(fitScale(region, limits)),
      merge_(merge),
      columns_(static_cast<std::size_t>(width() / scale_.across.pixelsPerCell)) {
  const std::size_t size = columns_ * static_cast<std::size_t>(height() / scale_.down.pixelsPerCell);
  numbers_.resize(size);
  counts_.resize(size);
}

void Raster::addRow(std::int32_t x, std::int32_t y, const std::vector<double>& numbers) {
  if (y < region_.top || y > region_.bottom) return;
  const std::int64_t from = std::max(x, region_.left);
  const std::int64_t to = std::min<std::int64_t>(x + static_cast<std::int64_t>(numbers.size()) - 1, region_.right);
  const std::int64_t row = (std::int64_t{y} - region_.top) / scale_.down.cellsPerPixel;
  for (std::int64_t column = from; column <= to; ++column) {
    const double number = numbers[static_cast<std::size_t>(column - x)];
    if (!std::isfinite(number)) continue;
    const std::size_t at = static_cast<std::size_t>(row) * columns_ +
                           static_cast<std::size_t>((column - region_.left) / scale_.across.cellsPerPixel);
    ++counts_[at];
    if (merge_ == Merge::kMean) {
      numbers_[at] += number / counts_[at] - numbers_[at] / counts_[at];  // never beyond its cells' range
    } else if (std::abs(number) > std::abs(numbers_[at])) {
      numbers_[at] = number;
    }
  }
}

void Raster::mark(std::int32_t x, std::int32_t y) {
  marks_.resize(numbers_.size());
  const std::int64_t row = (std::int64_t{y} - region_.top) / scale_.down.cellsPerPixel;
  const std::int64_t column = (std::int64_t{x} - region_.left) / scale_.across.cellsPerPixel;
  marks_[static_cast<std::size_t>(row) * columns_ + static_cast<std::size_t>(column)] = true;
}

}  // namespace tovrdb::tool
