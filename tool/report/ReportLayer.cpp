#include "tool/report/ReportLayer.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <numeric>
#include <utility>

#include "client/cells/NumberForm.h"
#include "tool/report/Levels.h"

namespace tovrdb::tool {
namespace {

constexpr double kTextPerByte = 1.25;
constexpr std::size_t kMostParts = 500;  // rows of the page's tables
constexpr std::size_t kMostSeams = 200;
constexpr std::size_t kMostWorst = 50;
constexpr double kLimit = 6;  // spreads beyond which a cell is an outlier

// Seven significant digits, for computed numbers.
double rounded(double number) { return std::strtod(fmt::format("{:.7g}", number).c_str(), nullptr); }

void addEdges(const Rect& rect, Json& row) {
  for (const std::int32_t edge : {rect.left, rect.top, rect.right, rect.bottom}) row.push_back(edge);
}

// Columns of the same name mean the same in every table: the page finds places by "left" to "bottom", or "x" and "y".
Json table(const std::string& name, std::size_t all, Json columns) {
  return {{"name", name}, {"all", all}, {"columns", std::move(columns)}, {"rows", Json::array()}};
}

// The parts whose medians are farthest from that of all, at most kMostParts.
std::vector<std::size_t> farthestParts(const std::vector<PartFigures>& parts, double median) {
  std::vector<std::size_t> order(parts.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  const auto distance = [&](std::size_t i) { return std::abs(parts[i].median - median); };
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t one, std::size_t other) { return distance(one) > distance(other); });
  order.resize(std::min(order.size(), kMostParts));
  return order;
}

Json partsTable(const std::vector<PartFigures>& all, const LayerSource& source, double median) {
  Json columns = {"left", "top", "right", "bottom", "cells", "minimum", "median", "maximum", "mean", "deviation"};
  const auto ends = endsOf(source.form);
  if (!source.isDifference) {
    for (const double end : ends) columns.push_back("at " + numberText(end));
  }
  columns.push_back("not finite");
  columns.push_back("stand out");
  Json parts = table(source.partName, all.size(), std::move(columns));
  for (const std::size_t index : farthestParts(all, median)) {
    const PartFigures& part = all[index];
    Json row = Json::array();
    addEdges(part.rect, row);
    row.push_back(part.summary.count + part.summary.notFinite);
    for (const double value : {part.summary.minimum, rounded(part.median), part.summary.maximum,
                               rounded(part.summary.mean), rounded(part.summary.deviation)}) {
      row.push_back(value);
    }
    if (!source.isDifference) {
      for (const std::size_t count : part.atEnds) row.push_back(count);
    }
    row.push_back(part.summary.notFinite);
    row.push_back(part.outliers);
    parts["rows"].push_back(std::move(row));
  }
  return parts;
}

Json seamsTable(const CabinetReport& report) {
  Json seams = table("seams", report.seams.size(), {"left", "top", "right", "bottom", "difference"});
  for (const std::size_t index : steepestSeams(report.seams, kMostSeams)) {
    Json row = Json::array();
    addEdges(report.seams[index].line, row);
    row.push_back(rounded(report.seams[index].difference));
    seams["rows"].push_back(std::move(row));
  }
  return seams;
}

Json worstTable(const CabinetReport& report) {
  Json worst = table("worst cells", report.worst.size(), {"x", "y", "value", "median", "spreads"});
  for (const WorstCell& cell : report.worst) {
    worst["rows"].push_back(
        {cell.cell.x, cell.cell.y, cell.value, rounded(report.parts[cell.part].median), rounded(cell.distance)});
  }
  return worst;
}

Json statisticsOf(const Summary& summary) {
  Json statistics{{"count", summary.count}, {"not_finite", summary.notFinite}};
  if (summary.count == 0) return statistics;
  statistics.update({{"minimum", summary.minimum},
                     {"maximum", summary.maximum},
                     {"mean", rounded(summary.mean)},
                     {"standard_deviation", rounded(summary.deviation)}});
  for (std::size_t i = 0; i < kPercents.size(); ++i) {
    statistics["percentiles"][numberText(kPercents[i])] = rounded(summary.percentiles[i]);
  }
  return statistics;
}

class LayerWriter {
 public:
  LayerWriter(const LayerSource& source, const LayerRoom& room) : source_(source), room_(room) {
    columns_ = (columnsOf(source.rect) + room.block - 1) / room.block;
    rows_ = (rowsOf(source.rect) + room.block - 1) / room.block;
    planesLeft_ = source.components * (room.block > 1 ? 3 : 1);
    charactersLeft_ = room.characters;
  }

  Json write() {
    const Rect& rect = source_.rect;
    Json json{{"rect", {rect.left, rect.top, rect.right, rect.bottom}},
              {"block", room_.block},
              {"columns", columns_},
              {"rows", rows_},
              {"scale", {source_.form.scale.times, source_.form.scale.over}},
              {"components", Json::array()}};
    for (std::size_t i = 0; i < source_.components; ++i) json["components"].push_back(component(i));
    json["absent"] = absent_;
    return json;
  }

 private:
  Json component(std::size_t index) {
    std::vector<double> numbers = source_.stored(index);
    Json json{{"component", index}};
    if (room_.block == 1) {
      json["planes"]["value"] = plane(numbers);
    } else {
      const ReducedNumbers reduced = reduceBlocks(numbers, columnsOf(source_.rect), rowsOf(source_.rect), room_.block);
      json["planes"]["minimum"] = plane(reduced.least);
      json["planes"]["mean"] = plane(reduced.mean);
      json["planes"]["maximum"] = plane(reduced.most);
    }
    const std::vector<bool> counted = source_.counted(index);
    if (source_.isDifference) json["changed"] = changed(counted);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      numbers[i] = counted[i] ? source_.form.scale.of(numbers[i]) : std::numeric_limits<double>::quiet_NaN();
    }
    addFigures({source_.rect, std::move(numbers)}, counted, json);
    return json;
  }

  // 16 bits per number if that leaves at least 8 for the remaining planes.
  Json plane(const std::vector<double>& numbers) {
    const double size = static_cast<double>(numbers.size()) * kTextPerByte;
    --planesLeft_;
    const bool wide = charactersLeft_ - 2 * size >= static_cast<double>(planesLeft_) * size;
    const Levels levels = levelsOf(numbers, wide ? 16 : 8);
    charactersLeft_ -= static_cast<double>(levels.levels.size());
    Json json{{"bits", levels.bits},
              {"offset", levels.offset},
              {"step", levels.step},
              {"exact", levels.exact},
              {"levels", levels.levels}};
    if (levels.absent.empty()) return json;
    const auto known = std::find(absent_.begin(), absent_.end(), levels.absent);
    json["absent"] = known - absent_.begin();
    if (known == absent_.end()) absent_.push_back(levels.absent);
    return json;
  }

  Json changed(const std::vector<bool>& cells) const {
    std::vector<bool> blocks(static_cast<std::size_t>(columns_ * rows_));
    const auto width = static_cast<std::size_t>(columnsOf(source_.rect));
    const auto block = static_cast<std::size_t>(room_.block);
    for (std::size_t i = 0; i < cells.size(); ++i) {
      if (cells[i]) blocks[i / width / block * static_cast<std::size_t>(columns_) + i % width / block] = true;
    }
    return {{"count", std::count(cells.begin(), cells.end(), true)}, {"cells", packedText(bitsOf(blocks))}};
  }

  // Cells that are not counted are NaN in the grid, but do not count as not finite.
  void addFigures(const NumberGrid& grid, const std::vector<bool>& counted, Json& json) const {
    Summary summary = summarize(grid.values);
    summary.notFinite -= static_cast<std::size_t>(std::count(counted.begin(), counted.end(), false));
    json["statistics"] = statisticsOf(summary);
    json["tables"] = Json::array();
    if (summary.count == 0) return;
    const double median = json["statistics"]["percentiles"]["50"];
    const std::vector<Rect> whole{source_.rect};
    CabinetReport report =
        reportCabinets(grid, source_.parts.empty() ? whole : source_.parts, {endsOf(source_.form), kLimit, kMostWorst});
    const Json worst = worstTable(report);
    if (!source_.partName.empty()) {
      const Json seams = seamsTable(report);
      leaveOutUncounted(grid, counted, report.parts);
      json["tables"].push_back(partsTable(report.parts, source_, median));
      json["tables"].push_back(seams);
    }
    json["tables"].push_back(worst);
  }

  static void leaveOutUncounted(const NumberGrid& grid, const std::vector<bool>& counted,
                                std::vector<PartFigures>& parts) {
    for (PartFigures& part : parts) {
      for (std::int32_t y = part.rect.top; y <= part.rect.bottom; ++y) {
        const auto first = counted.begin() + static_cast<std::ptrdiff_t>(grid.index(part.rect.left, y));
        part.summary.notFinite -= static_cast<std::size_t>(std::count(first, first + columnsOf(part.rect), false));
      }
    }
    parts.erase(
        std::remove_if(parts.begin(), parts.end(), [](const PartFigures& part) { return part.summary.count == 0; }),
        parts.end());
  }

  const LayerSource& source_;
  const LayerRoom& room_;
  std::int64_t columns_ = 0;
  std::int64_t rows_ = 0;
  std::size_t planesLeft_ = 0;
  double charactersLeft_ = 0;
  std::vector<std::string> absent_;
};

}  // namespace

double leastCharacters(double values, std::int64_t block) {
  const double planes = block > 1 ? 3 : 1;
  return values * kTextPerByte * planes / static_cast<double>(block) / static_cast<double>(block);
}

Json layerJson(const LayerSource& source, const LayerRoom& room) { return LayerWriter(source, room).write(); }

}  // namespace tovrdb::tool
