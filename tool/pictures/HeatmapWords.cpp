#include "tool/pictures/HeatmapWords.h"

#include <fmt/core.h>

namespace tovrdb::tool {

std::string scaleNote(const RasterScale& scale, Merge merge) {
  const auto times = [](auto across, auto down) { return fmt::format("{} x {}", across, down); };
  const std::string stretched = scale.square() ? "" : " Not drawn to scale: cells are not square here.";
  if (scale.across.cellsPerPixel > 1 || scale.down.cellsPerPixel > 1) {
    return fmt::format("A pixel shows the {} of {} cells.{}", merge == Merge::kMean ? "mean" : "largest difference",
                       times(scale.across.cellsPerPixel, scale.down.cellsPerPixel), stretched);
  }
  return fmt::format("A cell takes {} pixels.{}", times(scale.across.pixelsPerCell, scale.down.pixelsPerCell),
                     stretched);
}

void setColours(const GatheredNumbers& numbers, const NumberRange& range, Heatmap& heatmap) {
  heatmap.low = range.first;
  heatmap.high = range.second;
  const NumberRange extremes = !numbers.values().empty() ? numbers.extremes() : range;
  heatmap.least = extremes.first;
  heatmap.most = extremes.second;
}

}  // namespace tovrdb::tool
