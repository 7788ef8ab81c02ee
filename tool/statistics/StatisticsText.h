// Statistics of cells as text for people, and as JSON.
#pragma once

#include <string>

#include "client/reading/CellStatistics.h"
#include "tool/statistics/CabinetTables.h"

namespace tovrdb::tool {

// Tables with a heading; of parts, those of CabinetTables.
std::string statisticsText(const CellStatistics& statistics, double outlierLimit);

// REQUIRES: `file` is valid UTF-8.
std::string statisticsJson(const CellStatistics& statistics, double outlierLimit, const std::string& file);

}  // namespace tovrdb::tool
