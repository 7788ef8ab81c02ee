#include "client/contents/BlockPlace.h"

#include "client/base/ToolError.h"

namespace tovrtool {

void requireSuits(const AreaName& area, int databaseType) {
  if (databaseType == 1 && area.screen.empty()) {
    throw ToolError(kUsage, "the database finds screens by name (type 1): say which with --screen");
  }
  if (databaseType == 0 && !area.screen.empty()) {
    throw ToolError(kUsage, "the database finds screens by rectangle (type 0): leave out --screen");
  }
}

}  // namespace tovrtool
