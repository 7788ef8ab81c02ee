// One grid of a report - the numbers of a set, or what changed in them - as the page's data: every component as levels,
// with its statistics. docs/report.md describes the form.
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
  // The numbers of a component, row after row, as they are stored; NaN for missing ones.
  std::function<std::vector<double>(std::size_t component)> stored;
  // The cells that the statistics of a component count: those that could be read, or for a difference those that
  // changed.
  std::function<std::vector<bool>(std::size_t component)> counted;
  bool isDifference = false;
  std::vector<Rect> parts;  // inside `rect`; empty: the whole
  std::string partName;     // "cabinets", "areas"; empty: no table of parts

  double values() const {
    return static_cast<double>(columnsOf(rect)) * static_cast<double>(rowsOf(rect)) * static_cast<double>(components);
  }
};

// How much of a page the numbers of a layer may take.
struct LayerRoom {
  std::int64_t block = 1;  // block x block cells become one: minimum, mean and maximum
  double characters = 0;
};

// The least characters that `values` numbers take.
double leastCharacters(double values, std::int64_t block);

Json layerJson(const LayerSource& source, const LayerRoom& room);

}  // namespace tovrdb::tool
