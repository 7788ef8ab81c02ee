// Statistics of cells as text for people, and as JSON.
#pragma once

#include <string>

#include "client/base/Json.h"
#include "client/reading/CellStatistics.h"

namespace tovrdb::tool {

// Tables with a heading; of parts, as cabinetText.
std::string statisticsText(const CellStatistics& statistics, double outlierLimit);

// REQUIRES: `file` is valid UTF-8.
std::string statisticsJson(const CellStatistics& statistics, double outlierLimit, const std::string& file);

// Of parts alone.
std::string cabinetText(const std::vector<CabinetStatistics>& components, const NumberForm& form);

enum class CabinetTable { kCabinets, kSeams, kWorst };

// Comma-separated, with a heading line and exact numbers.
std::string cabinetCsv(const std::vector<CabinetStatistics>& components, const NumberForm& form, CabinetTable table);

Json cabinetJson(const CabinetStatistics& component, const NumberForm& form);

}  // namespace tovrdb::tool
