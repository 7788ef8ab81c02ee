// What pictures say about themselves.
#pragma once

#include <string>

#include "tool/pictures/GatheredNumbers.h"
#include "tool/pictures/HeatmapPicture.h"

namespace tovrdb::tool {

// How cells came to pixels.
std::string scaleNote(const RasterScale& scale, Merge merge);

// The colours span `range`, and the bar tells what lies beyond.
void setColours(const GatheredNumbers& numbers, const NumberRange& range, Heatmap& heatmap);

}  // namespace tovrdb::tool
