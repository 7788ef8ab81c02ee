// One grid of a report - the numbers of a set, or what changed in them - as the page's data: every component as levels,
// with its figures. docs/report.md describes the form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "client/base/Json.h"
#include "client/cells/NumberForm.h"
#include "client/statistics/CabinetReport.h"

namespace tovrdb::tool {

struct LayerSource {
  Rect rect{};
  NumberForm form;
  std::size_t components = 0;
  // The numbers of a component, row after row, as they are stored; NaN where there is none.
  std::function<std::vector<double>(std::size_t component)> stored;
  // The cells of a component that its figures are of: those that could be read, of a difference those that changed.
  std::function<std::vector<bool>(std::size_t component)> counted;
  bool isDifference = false;
  std::vector<Rect> parts;  // inside `rect`; none: the whole
  std::string partName;     // "cabinets", "areas"; empty: no table of them

  double values() const {
    return static_cast<double>(columnsOf(rect)) * static_cast<double>(rowsOf(rect)) * static_cast<double>(components);
  }
};

// How much of a page the numbers of a layer may take.
struct LayerRoom {
  std::int64_t block = 1;  // cells of a side that become one: minimum, mean and maximum
  double characters = 0;
};

// The characters that `values` numbers take at the least.
double leastCharacters(double values, std::int64_t block);

Json layerJson(const LayerSource& source, const LayerRoom& room);

}  // namespace tovrdb::tool
