// Finds and reads the cells that a person asks for: all of one area, a rectangle inside one, or one that several areas
// cover together.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"
#include "client/contents/StoredArea.h"
#include "client/reading/Mosaic.h"

namespace tovrdb {

struct CellQuery {
  std::optional<std::int64_t> areaId;  // instead of type and screen
  std::optional<std::int32_t> type;
  std::string screen;
  std::optional<Rect> rect;    // nothing: the whole area, or with `mosaic` the rectangle around all areas
  bool mosaic = false;         // read across areas
  std::optional<double> fill;  // the stored number of cells that no area covers
  FormOptions form;
};

// Where these cells lie.
struct CellSource {
  std::vector<StoredArea> areas;  // one; of a mosaic those that show, in the order in which they were stored
  Rect rect{};
  bool mosaic = false;       // more than one area, or not all of the rectangle covered
  bool overlapping = false;  // of a mosaic: areas overlap in it, and each cell is the first stored area's
};

// Reads no cells. Throws Error if no area, or no single one, holds what is asked for, and says what there is instead;
// also if a needed area has a fault.
CellSource locateCells(Session& session, const CellQuery& query);

// Reads a part of what was located, with `fill` as in readMosaic(). Throws Error as readCells() and readMosaic() do.
// REQUIRES: the source's rectangle holds `part`.
Mosaic readLocated(Session& session, const CellSource& source, const Rect& part, const Bytes& fill);

struct CellAnswer {
  CellBlock cells;
  std::vector<StoredArea> areas;   // that the cells are from
  std::optional<NumberForm> form;  // given or kept
  bool overlapping = false;        // as of CellSource
  std::int64_t filled = 0;         // cells that no area covers
};

// Without `mosaic` the answer is the library's; with it, each cell is from the first stored area that has it. Throws
// Error as locateCells() and readLocated() do.
CellAnswer findCells(Session& session, const CellQuery& query);

}  // namespace tovrdb
