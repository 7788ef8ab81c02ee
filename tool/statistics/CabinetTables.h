// Reports of cabinets as text for people, as tables for spreadsheets, and as JSON.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/cells/NumberForm.h"
#include "client/reading/CellStatistics.h"

namespace tovrdb::tool {

std::string cabinetText(const std::vector<CabinetStatistics>& components, const NumberForm& form);

enum class CabinetTable { kCabinets, kSeams, kWorst };

// Comma-separated, with a heading line and exact numbers.
std::string cabinetCsv(const std::vector<CabinetStatistics>& components, const NumberForm& form, CabinetTable table);

Json cabinetJson(const CabinetStatistics& component, const NumberForm& form);

}  // namespace tovrdb::tool
