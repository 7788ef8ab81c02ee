// The cells of a file as a report shows them: set by set, each the blocks of one screen and type whose numbers have one
// form, composed to one grid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/cells/CellBlock.h"
#include "client/cells/NumberForm.h"
#include "client/contents/StoredArea.h"

namespace tovrdb::tool {

struct ReportArea {
  StoredArea area;
  std::string fault;  // why its cells are not shown; empty: they are
};

struct CellSet {
  std::int64_t screenId = 0;
  std::string screen;
  std::int32_t type = 0;
  NumberForm form;
  std::int32_t cellBytes = 0;
  Rect rect{};                     // around all of its areas
  Rect screenRect{};               // of the screen; where there is none, `rect`
  std::vector<std::size_t> areas;  // of the report's, in the order in which they were stored

  std::size_t components() const { return static_cast<std::size_t>(cellBytes) / traitsOf(form.dtype).bytes; }
  std::int64_t cells() const { return columnsOf(rect) * rowsOf(rect); }
};

// Every area without a fault is in one set, or gets one: no form, a rectangle without sense, or too far from the others
// of its set.
std::vector<CellSet> planSets(std::vector<ReportArea>& areas, const FormOptions& options);

// Cells of a rectangle, some of which may be missing.
struct GridCells {
  CellBlock cells;
  std::vector<bool> present;

  bool any() const;
};

// Where areas overlap, the one that was stored first shows, as in the library. A block that cannot be read gives its
// area a fault. Throws Error for what says nothing about the file.
GridCells readSet(Session& session, const CellSet& set, std::vector<ReportArea>& areas);

// The numbers of one component as they are stored, without scale; NaN where a cell is missing.
std::vector<double> storedNumbers(const GridCells& grid, NumberType dtype, std::size_t component);

}  // namespace tovrdb::tool
