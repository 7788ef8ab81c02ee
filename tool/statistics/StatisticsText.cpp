#include "tool/statistics/StatisticsText.h"

#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "client/base/Text.h"
#include "client/cells/NumberForm.h"
#include "client/checks/JsonForms.h"
#include "tool/io/TextTable.h"

namespace tovrdb::tool {
namespace {

constexpr double kLongestBar = 40;
constexpr double kDigits = 1e4;  // computed numbers are rounded to the deviation divided by this

std::string computedText(const ComponentStatistics& component, double value) {
  return numberText(value, component.summary.deviation / kDigits);
}

std::string summaryTable(const std::vector<ComponentStatistics>& components, const NumberForm& form) {
  std::vector<Column> columns = {{"component", true}, {"minimum", true}};
  for (const double percent : kPercents) columns.push_back({numberText(percent) + "%", true});
  for (const char* title : {"maximum", "mean", "deviation", "not finite", "stand out"})
    columns.push_back({title, true});
  TextRows rows;
  for (const ComponentStatistics& component : components) {
    const Summary& summary = component.summary;
    std::vector<std::string>& row = rows.emplace_back();
    row.push_back(std::to_string(component.index));
    if (summary.count == 0) {
      row.resize(columns.size() - 2, "-");
    } else {
      row.push_back(form.text(summary.minimum));
      for (const double value : summary.percentiles) row.push_back(computedText(component, value));
      row.push_back(form.text(summary.maximum));
      row.push_back(computedText(component, summary.mean));
      row.push_back(computedText(component, summary.deviation));
    }
    row.push_back(std::to_string(summary.notFinite));
    row.push_back(std::to_string(component.outliers.count));
  }
  return textTable(columns, rows);
}

std::string bar(std::size_t count, std::size_t most) {
  const double share = static_cast<double>(count) / static_cast<double>(std::max<std::size_t>(most, 1));
  const auto length =
      static_cast<std::size_t>(std::ceil(share * kLongestBar));  // at least one mark if there is anything
  return std::string(length, '#');
}

std::string histogramText(const ComponentStatistics& component, const NumberForm& form) {
  const Histogram& bins = component.bins;
  std::size_t most = std::max(bins.below, bins.above);
  for (const Bin& bin : bins.bins) most = std::max(most, bin.count);
  TextRows rows;
  const auto add = [&](const std::string& low, const std::string& high, std::size_t count) {
    rows.push_back({low, high, std::to_string(count), bar(count, most)});
  };
  if (bins.below > 0)
    add(form.text(component.summary.minimum), computedText(component, bins.bins.front().low), bins.below);
  for (const Bin& bin : bins.bins) add(computedText(component, bin.low), computedText(component, bin.high), bin.count);
  if (bins.above > 0)
    add(computedText(component, bins.bins.back().high), form.text(component.summary.maximum), bins.above);
  return fmt::format("\ncomponent {}\n{}", component.index,
                     textTable({{"from", true}, {"to", true}, {"cells", true}, {""}}, rows));
}

std::string outlierText(const CellStatistics& statistics, double limit) {
  const NumberGrid places{statistics.rect(), {}};
  TextRows rows;
  for (const ComponentStatistics& component : statistics.components) {
    for (const Outlier& outlier : component.outliers.farthest) {
      const CellPair cell = places.cell(outlier.index);
      rows.push_back({std::to_string(component.index), std::to_string(cell.x), std::to_string(cell.y),
                      statistics.form.text(outlier.value), computedText(component, component.outliers.median),
                      fmt::format("{:+.1f}", outlier.distance)});
    }
  }
  const std::string title =
      fmt::format("\ncells that stand out: more than {} spreads from the median", numberText(limit));
  if (rows.empty()) return title + ": none\n";
  return fmt::format(
      "{}, the {} strongest of each component\n{}", title, kMostOutliers,
      textTable({{"component", true}, {"x", true}, {"y", true}, {"value", true}, {"median", true}, {"spreads", true}},
                rows));
}

std::string heading(const CellStatistics& statistics) {
  const std::vector<StoredArea>& areas = statistics.cells.areas;
  const std::string place = areas.size() > 1 ? fmt::format("{} areas of {}", areas.size(), areas.front().screen)
                                             : fmt::format("area {} ({})", areas.front().id, toText(areas.front()));
  return printable(fmt::format("cells {} of {}, type {}: {} cells of {} x {}", toText(statistics.rect()), place,
                               areas.front().type, columnsOf(statistics.rect()) * rowsOf(statistics.rect()),
                               statistics.valuesPerCell, toText(statistics.form))) +
         "\n\n";
}

Json jsonOf(const ComponentStatistics& component, const Rect& rect) {
  const Summary& summary = component.summary;
  Json json{{"component", component.index}, {"count", summary.count}, {"not_finite", summary.notFinite}};
  if (summary.count == 0) return json;
  json.update({{"minimum", summary.minimum},
               {"maximum", summary.maximum},
               {"mean", summary.mean},
               {"standard_deviation", summary.deviation}});
  for (std::size_t i = 0; i < kPercents.size(); ++i) {
    json["percentiles"][numberText(kPercents[i])] = summary.percentiles[i];
  }
  json["histogram"] = {{"below", component.bins.below}, {"above", component.bins.above}, {"bins", Json::array()}};
  for (const Bin& bin : component.bins.bins) json["histogram"]["bins"].push_back({bin.low, bin.high, bin.count});
  Json& outliers = json["outliers"] = {{"median", component.outliers.median},
                                       {"spread", component.outliers.spread},
                                       {"count", component.outliers.count},
                                       {"strongest", Json::array()}};
  for (const Outlier& outlier : component.outliers.farthest) {
    const CellPair cell = NumberGrid{rect, {}}.cell(outlier.index);
    outliers["strongest"].push_back(
        {{"cell", {cell.x, cell.y}}, {"value", outlier.value}, {"spreads", outlier.distance}});
  }
  return json;
}

}  // namespace

std::string statisticsText(const CellStatistics& statistics, double outlierLimit) {
  std::string text = heading(statistics);
  if (!statistics.cabinets.empty()) return text + cabinetText(statistics.cabinets, statistics.form);
  text += summaryTable(statistics.components, statistics.form);
  for (const ComponentStatistics& component : statistics.components) {
    if (component.summary.count > 0) text += histogramText(component, statistics.form);
  }
  return text + outlierText(statistics, outlierLimit);
}

std::string statisticsJson(const CellStatistics& statistics, double outlierLimit, const std::string& file) {
  const std::vector<StoredArea>& areas = statistics.cells.areas;
  Json json{{"file", file}, {"screen", areas.front().screen}, {"type", areas.front().type}};
  for (const StoredArea& area : areas) json["areas"].push_back(area.id);
  json["rect"] = rectJson(statistics.rect());
  addJson(json, statistics.form);
  json["outlier_limit"] = outlierLimit;
  Json& components = json["components"] = Json::array();
  for (const ComponentStatistics& component : statistics.components) {
    components.push_back(jsonOf(component, statistics.rect()));
  }
  for (const CabinetStatistics& cabinets : statistics.cabinets) {
    components.push_back(cabinetJson(cabinets, statistics.form));
  }
  return jsonText(json);
}

}  // namespace tovrdb::tool
