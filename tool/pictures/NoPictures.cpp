// Stands in for the drawing of pictures where the program is built without cairo.
#include "tool/pictures/HeatmapPicture.h"
#include "tool/system/ToolError.h"

namespace tovrtool {

std::vector<unsigned char> drawHeatmap(const Raster& /*raster*/, const Heatmap& /*heatmap*/) {
  throw ToolError(kUsage, "this build of tovrdb draws no pictures: it was built without cairo");
}

}  // namespace tovrtool
