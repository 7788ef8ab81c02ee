// Numbers of cells as pixels of a picture.
//
// Small regions get several pixels per cell. In large ones several cells fall on one pixel, which shows their mean, or
// for differences the one farthest from zero, so that a single changed cell is never lost.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "client/cells/Rect.h"

namespace tovrdb::tool {

// At least one of cellsPerPixel and pixelsPerCell is 1.
struct AxisScale {
  std::int64_t cells = 1;  // of the region
  std::int64_t cellsPerPixel = 1;
  int pixelsPerCell = 1;

  int pixels() const { return static_cast<int>((cells + cellsPerPixel - 1) / cellsPerPixel) * pixelsPerCell; }
};

struct RasterScale {
  AxisScale across;
  AxisScale down;

  // Cells are drawn as squares, unless a thin region would become too narrow to see.
  bool square() const {
    return across.cellsPerPixel == down.cellsPerPixel && across.pixelsPerCell == down.pixelsPerCell;
  }
};

struct PixelLimits {
  std::int64_t across = 1280;
  std::int64_t down = 800;
};

// The scale at which the region fills a picture's area without exceeding it.
RasterScale fitScale(const Rect& region, const PixelLimits& limits = {});

enum class Merge { kMean, kFarthestFromZero };

class Raster {
 public:
  Raster(const Rect& region, Merge merge, const PixelLimits& limits = {});

  // The numbers of cells of row `y` from column `x` on. Cells outside the region and numbers that are not finite are
  // left out.
  void addRow(std::int32_t x, std::int32_t y, const std::vector<double>& numbers);

  // Marks the pixel of a cell, which is then framed. REQUIRES: the region holds the cell.
  void mark(std::int32_t x, std::int32_t y);

  const Rect& region() const { return region_; }
  const RasterScale& scale() const { return scale_; }
  int width() const { return scale_.across.pixels(); }
  int height() const { return scale_.down.pixels(); }
  // Whether a cell was added there, and what the pixel shows. REQUIRES: 0 <= x < width(), 0 <= y < height().
  bool has(int x, int y) const { return counts_[place(x, y)] > 0; }
  double at(int x, int y) const { return numbers_[place(x, y)]; }
  bool isMarked(int x, int y) const { return !marks_.empty() && marks_[place(x, y)]; }
  // The pixel, of a whole picture's, where a cell's left or top edge lies; the region's far edges are one cell on.
  double pixelAcross(std::int64_t x) const { return pixelOf(scale_.across, x - region_.left); }
  double pixelDown(std::int64_t y) const { return pixelOf(scale_.down, y - region_.top); }

 private:
  static double pixelOf(const AxisScale& scale, std::int64_t cell) {
    return static_cast<double>(cell) * scale.pixelsPerCell / static_cast<double>(scale.cellsPerPixel);
  }
  std::size_t place(int x, int y) const {
    return static_cast<std::size_t>(y / scale_.down.pixelsPerCell) * columns_ +
           static_cast<std::size_t>(x / scale_.across.pixelsPerCell);
  }

  Rect region_;
  RasterScale scale_;
  Merge merge_;
  std::size_t columns_;
  std::vector<double> numbers_;
  std::vector<std::uint32_t> counts_;
  std::vector<bool> marks_;  // empty if nothing is marked
};

}  // namespace tovrdb::tool
