#include "tool/report/ReportCells.h"

#include <fmt/core.h>

#include <algorithm>
#include <limits>
#include <map>
#include <tuple>

#include "client/base/Error.h"
#include "client/cells/CellNumbers.h"
#include "client/checks/Check.h"
#include "client/reading/Mosaic.h"
#include "client/reading/NumberForms.h"

namespace tovrdb::tool {
namespace {

constexpr std::size_t kMostComponents = 64;
constexpr std::int64_t kSparse = 16;             // a grid may have so many times the cells of its areas,
constexpr std::int64_t kAlwaysFine = 4'000'000;  // or up to so many cells

// Why the area's cells cannot be shown as numbers; empty if they can.
std::string faultOf(const StoredArea& area, const std::optional<NumberForm>& form) {
  if (!isSound(area.rect)) return "its rectangle holds no cells";
  if (area.cellBytes <= 0) return area.storedBytes == 0 ? "it has no block" : "its block tells no bytes per cell";
  if (!form) return "nothing tells the type of its numbers: say it with --dtype";
  if (static_cast<std::size_t>(area.cellBytes) % traitsOf(form->dtype).bytes != 0) {
    return fmt::format("a cell of {} bytes is not a whole number of {}", area.cellBytes, nameOf(form->dtype));
  }
  if (static_cast<std::size_t>(area.cellBytes) / traitsOf(form->dtype).bytes > kMostComponents) {
    return fmt::format("a page shows at most {} numbers of a cell", kMostComponents);
  }
  if (!fitsBlock(area.rect, area.cellBytes)) return "its cells are more than 2 GiB";
  if (area.storedBytes < columnsOf(area.rect) * rowsOf(area.rect) * area.cellBytes) {
    return "its block is too short for its rectangle";
  }
  return "";
}

void add(const StoredArea& area, const NumberForm& form, std::size_t index, CellSet& set) {
  if (set.areas.empty()) {
    set = {area.screenId,
           area.screen,
           area.type,
           form,
           area.cellBytes,
           area.rect,
           area.screenRect.value_or(area.rect),
           {}};
  }
  set.rect = united(set.rect, area.rect);
  if (!area.screenRect) set.screenRect = set.rect;
  set.areas.push_back(index);
}

bool fitsGrid(const CellSet& set, const std::vector<ReportArea>& areas) {
  if (!fitsBlock(set.rect, set.cellBytes)) return false;
  std::int64_t covered = 0;
  for (const std::size_t index : set.areas)
    covered += columnsOf(areas[index].area.rect) * rowsOf(areas[index].area.rect);
  return set.cells() <= kAlwaysFine || set.cells() / kSparse <= covered;
}

// Nothing if the block cannot be read, which its area then tells.
std::optional<CellBlock> readOrTell(Session& session, ReportArea& area) {
  try {
    return readBlock(session, area.area);
  } catch (const Error& error) {
    if (isNoFault(error)) throw;
    area.fault = error.what();
    beginAgain(session);
    return std::nullopt;
  }
}

}  // namespace

std::vector<CellSet> planSets(std::vector<ReportArea>& areas, const FormOptions& options) {
  std::map<std::tuple<std::int64_t, std::int32_t, std::int32_t, std::string>, CellSet> sets;
  for (std::size_t i = 0; i < areas.size(); ++i) {
    const StoredArea& area = areas[i].area;
    if (!areas[i].fault.empty()) continue;
    const auto form = area.cellBytes > 0 ? chosenForm(options, keptForm(area)) : std::nullopt;
    areas[i].fault = faultOf(area, form);
    if (areas[i].fault.empty()) add(area, *form, i, sets[{area.screenId, area.type, area.cellBytes, toText(*form)}]);
  }
  std::vector<CellSet> fitting;
  for (auto& [key, set] : sets) {
    if (fitsGrid(set, areas)) {
      fitting.push_back(std::move(set));
      continue;
    }
    for (const std::size_t index : set.areas) areas[index].fault = "it lies too far from the others for one picture";
  }
  return fitting;
}

bool GridCells::any() const { return std::find(present.begin(), present.end(), true) != present.end(); }

GridCells readSet(Session& session, const CellSet& set, std::vector<ReportArea>& areas) {
  GridCells grid{blankBlock(set.rect, set.cellBytes), std::vector<bool>(static_cast<std::size_t>(set.cells()), true)};
  Composition composition(set.rect);
  for (const std::size_t index : set.areas) {
    // Hidden areas are read as well: the page says of every area whether its block can be read.
    const auto block = readOrTell(session, areas[index]);
    if (block) composition.add(block->rect, [&](const Rect&) { return copyRuns(*block, grid.cells); });
  }
  composition.visitUncovered([&](const CellRun& run) {
    const std::size_t first = grid.cells.offset(run.left, run.y) / static_cast<std::size_t>(set.cellBytes);
    std::fill_n(grid.present.begin() + static_cast<std::ptrdiff_t>(first), run.right - run.left + 1, false);
  });
  return grid;
}

std::vector<double> storedNumbers(const GridCells& grid, NumberType dtype, std::size_t component) {
  std::vector<double> numbers(grid.present.size());
  readNumbers(dtype, grid.cells.bytes.get() + component * traitsOf(dtype).bytes,
              static_cast<std::size_t>(grid.cells.cellBytes), numbers.size(), numbers.data());
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (!grid.present[i]) numbers[i] = std::numeric_limits<double>::quiet_NaN();
  }
  return numbers;
}

}  // namespace tovrdb::tool
