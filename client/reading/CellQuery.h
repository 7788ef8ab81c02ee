// Cells as commands ask for them: of one area, of a rectangle that one area holds, or of one that several cover
// together.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"
#include "client/contents/StoredArea.h"

namespace tovrdb {

struct CellQuery {
  std::optional<std::int64_t> areaId;  // instead of type and screen
  std::optional<std::int32_t> type;
  std::string screen;
  std::optional<Rect> rect;  // without one: all of the area, with `mosaic` of all areas
  bool mosaic = false;
  std::optional<double> fill;  // the number, as it is stored, of cells that no area covers
  FormOptions form;
};

struct CellAnswer {
  CellBlock cells;
  std::vector<StoredArea> areas;   // that the cells are from
  std::optional<NumberForm> form;  // given or kept
  bool overlapping = false;        // of a mosaic: areas overlap in it, and each cell is the first stored area's
  std::int64_t filled = 0;         // cells
};

// Where the cells that a query asks for lie.
struct CellSource {
  std::vector<StoredArea> areas;  // one; of a mosaic those that show, in the order in which they were stored
  Rect rect{};
  bool mosaic = false;  // more than one area, or not all of the rectangle covered
  bool overlapping = false;
};

// Reads no cells. Throws Error, which tells what there is instead, also if an area that is needed has a fault.
CellSource locateCells(Session& session, const CellQuery& query);

// Without `mosaic`, a rectangle is answered as the library answers it; with it, each cell is from the first stored area
// that has it. Throws Error as locateCells and readMosaic do.
CellAnswer findCells(Session& session, const CellQuery& query);

}  // namespace tovrdb
