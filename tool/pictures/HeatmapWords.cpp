#include "tool/pictures/HeatmapWords.h"

#include <cstdio>

namespace tovrtool {

std::string numberText(double number) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", number);
  return text;
}

std::string scaleNote(const RasterScale& scale, Merge merge) {
  const auto times = [](auto across, auto down) { return std::to_string(across) + " x " + std::to_string(down); };
  const std::string stretched = scale.square() ? "" : " Not drawn to scale: cells are no squares here.";
  if (scale.across.cellsPerPixel > 1 || scale.down.cellsPerPixel > 1) {
    return std::string("A pixel shows the ") + (merge == Merge::kMean ? "mean" : "largest difference") + " of " +
           times(scale.across.cellsPerPixel, scale.down.cellsPerPixel) + " cells." + stretched;
  }
  return "A cell takes " + times(scale.across.pixelsPerCell, scale.down.pixelsPerCell) + " pixels." + stretched;
}

void setColours(const GatheredNumbers& numbers, const NumberRange& range, Heatmap& heatmap) {
  heatmap.low = range.first;
  heatmap.high = range.second;
  const NumberRange extremes = numbers.count() > 0 ? numbers.extremes() : range;
  heatmap.least = extremes.first;
  heatmap.most = extremes.second;
}

}  // namespace tovrtool
