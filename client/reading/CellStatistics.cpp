#include "client/reading/CellStatistics.h"

#include <utility>

#include "client/cells/CellBlock.h"
#include "client/cells/CellNumbers.h"
#include "client/reading/NumberForms.h"

namespace tovrdb {
namespace {

constexpr std::size_t kBins = 10;

NumberGrid numbersOf(const CellStatistics& statistics, std::size_t component) {
  const CellBlock& cells = statistics.cells.cells;
  NumberGrid numbers{cells.rect,
                     std::vector<double>(static_cast<std::size_t>(columnsOf(cells.rect) * rowsOf(cells.rect)))};
  const unsigned char* first = cells.at(cells.rect.left, cells.rect.top);
  readNumbers(statistics.form, first + component * traitsOf(statistics.form.dtype).bytes,
              static_cast<std::size_t>(cells.cellBytes), numbers.values.size(), numbers.values.data());
  return numbers;
}

ComponentStatistics componentOf(const std::vector<double>& values, std::size_t index, double outlierLimit) {
  ComponentStatistics component{index, summarize(values), {}, findOutliers(values, outlierLimit, kMostOutliers)};
  const std::vector<double>& percentiles = component.summary.percentiles;
  if (component.summary.count > 0) {
    component.bins = histogram(values, percentiles.front(), percentiles.back(), kBins);
  }
  return component;
}

std::vector<Rect> partsOf(const CellStatistics& statistics, const std::optional<CellPair>& cabinet) {
  const std::vector<StoredArea>& areas = statistics.cells.areas;
  if (cabinet) {
    const Rect screen = areas.front().screenRect.value_or(statistics.rect());
    return cabinetsIn(statistics.rect(), {screen.left, screen.top}, *cabinet);
  }
  std::vector<Rect> parts;
  for (const StoredArea& area : areas) parts.push_back(*common(area.rect, statistics.rect()));
  return parts;
}

}  // namespace

CellAnswer findCells(Session& session, const StatisticsQuestion& question) {
  CellQuery query = question.cells;
  if (!question.byArea || query.areaId) return findCells(session, query);
  query.mosaic = true;
  query.fill = 0;
  CellAnswer answer = findCells(session, query);
  answer.filled = 0;
  return answer;
}

CellStatistics statisticsOf(CellAnswer cells, const StatisticsQuestion& question) {
  CellStatistics statistics;
  statistics.cells = std::move(cells);
  statistics.form = requireForm(statistics.cells.areas, question.cells.form);
  const std::int32_t cellBytes = statistics.cells.cells.cellBytes;
  statistics.valuesPerCell = valuesPerCell(cellBytes, statistics.form.dtype);
  const std::size_t first = question.component.value_or(0);
  const std::size_t last = question.component.value_or(statistics.valuesPerCell - 1);
  requireComponent(cellBytes, statistics.form.dtype, last);
  const std::vector<Rect> parts = question.isByPart() ? partsOf(statistics, question.cabinet) : std::vector<Rect>();
  const CabinetQuestion ofCabinets{endsOf(statistics.form), question.outlierLimit, question.worst};
  for (std::size_t i = first; i <= last; ++i) {
    const NumberGrid numbers = numbersOf(statistics, i);
    if (question.isByPart()) {
      statistics.cabinets.push_back({i, reportCabinets(numbers, parts, ofCabinets)});
    } else {
      statistics.components.push_back(componentOf(numbers.values, i, question.outlierLimit));
    }
  }
  return statistics;
}

}  // namespace tovrdb
