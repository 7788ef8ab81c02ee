// Reports of cabinets as text for people, as tables for spreadsheets, and as JSON.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/cells/NumberForm.h"
#include "client/statistics/CabinetReport.h"

namespace tovrdb::tool {

struct CabinetComponent {
  std::size_t index = 0;  // which number of a cell
  CabinetReport report;
};

std::string cabinetText(const std::vector<CabinetComponent>& components, const NumberForm& form);

enum class CabinetTable { kCabinets, kSeams, kWorst };

// With a heading line; numbers are exact.
std::string cabinetCsv(const std::vector<CabinetComponent>& components, const NumberForm& form, CabinetTable table);

Json cabinetJson(const CabinetComponent& component, const NumberForm& form);

}  // namespace tovrdb::tool
