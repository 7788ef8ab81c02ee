#include "tool/pictures/Raster.h"

#include <algorithm>
#include <cmath>

namespace tovrtool {
namespace {

constexpr std::int64_t kMostAcross = 1280;
constexpr std::int64_t kMostDown = 800;
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

RasterScale fitScale(const Rect& region) {
  const std::int64_t columns = columnsOf(region);
  const std::int64_t rows = rowsOf(region);
  const std::int64_t shrink = std::max(roundedUp(columns, kMostAcross), roundedUp(rows, kMostDown));
  const std::int64_t grow =
      std::clamp<std::int64_t>(std::min(kMostAcross / columns, kMostDown / rows), 1, kLargestCell);
  return {axis(columns, shrink, grow), axis(rows, shrink, grow)};
}

Raster::Raster(const Rect& region, Merge merge)
    : region_(region),
      scale_(fitScale(region)),
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

}  // namespace tovrtool
