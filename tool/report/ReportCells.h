// The cells of a file as a report shows them: in sets, each of which combines the blocks of one screen and type whose
// numbers have the same form into one grid.
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
  std::string fault;  // why its cells are not shown; empty if they are
};

struct CellSet {
  std::int64_t screenId = 0;
  std::string screen;
  std::int32_t type = 0;
  NumberForm form;
  std::int32_t cellBytes = 0;
  Rect rect{};                     // around all of its areas
  Rect screenRect{};               // of the screen, or `rect` if there is none
  std::vector<std::size_t> areas;  // indices into the report's areas, in the order of storing

  std::size_t components() const { return static_cast<std::size_t>(cellBytes) / traitsOf(form.dtype).bytes; }
  std::int64_t cells() const { return columnsOf(rect) * rowsOf(rect); }
};

// Puts every area without a fault into a set or gives it a fault: no form, an invalid rectangle, or too far from the
// others of its set.
std::vector<CellSet> planSets(std::vector<ReportArea>& areas, const FormOptions& options);

// Cells of a rectangle, some of which may be missing.
struct GridCells {
  CellBlock cells;
  std::vector<bool> present;

  bool any() const;
};

// If areas overlap, the one that was stored first is shown, as in the library. A block that cannot be read gives its
// area a fault. Throws Error for failures that say nothing about the file.
GridCells readSet(Session& session, const CellSet& set, std::vector<ReportArea>& areas);

// The numbers of one component as stored, without scale; NaN for missing cells.
std::vector<double> storedNumbers(const GridCells& grid, NumberType dtype, std::size_t component);

}  // namespace tovrdb::tool
