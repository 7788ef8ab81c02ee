// One array of cells out of several stored areas.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tool/cells/CellBlock.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/StoredArea.h"

namespace tovrtool {

struct Mosaic {
  CellBlock cells;
  std::vector<StoredArea> areas;  // those that show, in the order in which they were stored
  bool overlapping = false;       // where they do, the one that was stored first shows, as in the library
  std::int64_t filled = 0;        // cells that no area covers
};

// The areas that have cells in `rect`, in the order given.
std::vector<StoredArea> areasMeeting(const std::vector<StoredArea>& areas, const Rect& rect);

// The cells of `rect`, each area read at most once. `fill` is the stored form of one cell for what no area covers;
// empty where that is to be refused. Throws ToolError: cells without an area, areas whose cells have other widths, more
// than 2 GiB of cells. REQUIRES: the areas are in the order in which they were stored.
Mosaic readMosaic(Session& session, const std::vector<StoredArea>& areas, const Rect& rect, const Bytes& fill);

}  // namespace tovrtool
