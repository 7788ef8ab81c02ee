// Statistics of stored cells: of all that a query finds, or cabinet by cabinet.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "client/cells/NumberForm.h"
#include "client/cells/Rect.h"
#include "client/reading/CellQuery.h"
#include "client/statistics/CabinetReport.h"
#include "client/statistics/Statistics.h"

namespace tovrdb {

struct StatisticsQuestion {
  CellQuery cells;
  std::optional<std::size_t> component;  // nothing: all
  double outlierLimit = 6;               // in spreads from the median
  // One of these two asks for the figures of every part instead: of cabinets of this size, the first of which begins at
  // the screen's corner, or of stored areas.
  std::optional<CellPair> cabinet;
  bool byArea = false;
  std::size_t worst = 20;  // how many of the worst cells to tell of each component

  bool isByPart() const { return cabinet.has_value() || byArea; }
};

struct ComponentStatistics {
  std::size_t index = 0;  // which number of a cell
  Summary summary;
  Histogram bins;  // from the lowest to the highest percentile of the summary; none without finite numbers
  Outliers outliers;
};

struct CabinetStatistics {
  std::size_t index = 0;  // which number of a cell
  CabinetReport report;
};

struct CellStatistics {
  CellAnswer cells;
  NumberForm form;
  std::size_t valuesPerCell = 0;
  std::vector<ComponentStatistics> components;  // unless the question is by part
  std::vector<CabinetStatistics> cabinets;      // if it is

  const Rect& rect() const { return cells.cells.rect; }
};

constexpr std::size_t kMostOutliers = 10;  // that are told of each component

// The cells that the question is about. By area, cells between the areas are allowed, since they count for none. Throws
// Error as findCells does.
CellAnswer findCells(Session& session, const StatisticsQuestion& question);

// Throws Error if the type of the numbers is not known, or cells do not have the component.
CellStatistics statisticsOf(CellAnswer cells, const StatisticsQuestion& question);

}  // namespace tovrdb
