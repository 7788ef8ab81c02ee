// Stands in for the drawing of pictures where the program is built without Pango.
#include "client/base/ToolError.h"
#include "tool/pictures/HeatmapPicture.h"

namespace tovrtool {

std::vector<unsigned char> drawSheet(const Sheet& /*sheet*/) {
  throw ToolError(kUsage, "this build of tovrdb draws no pictures: it was built without Pango");
}

}  // namespace tovrtool
