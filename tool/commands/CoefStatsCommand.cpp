#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "tool/cells/CellBlock.h"
#include "tool/cells/CellNumbers.h"
#include "tool/cells/Statistics.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/database/StoredArea.h"
#include "tool/io/JsonText.h"
#include "tool/io/TextTable.h"

namespace tovrtool {
namespace {

struct Options {
  std::string file;
  std::int32_t type = 0;
  std::string screen;
  std::optional<Rect> rect;
  Dtype dtype;
  std::optional<std::size_t> component;
  double limit = 6;
  bool json = false;
};

constexpr std::size_t kBins = 10;
constexpr std::size_t kMostOutliers = 10;
constexpr double kLongestBar = 40;

struct Component {
  std::size_t index = 0;
  Summary summary;
  Histogram bins;
  Outliers outliers;
};

// What all of the report is about.
struct Subject {
  StoredArea area;
  CellBlock cells;
  std::size_t valuesPerCell = 0;
};

Component describe(const Subject& subject, const Options& options, std::size_t index) {
  const CellBlock& cells = subject.cells;
  std::vector<double> values(static_cast<std::size_t>(columnsOf(cells.rect) * rowsOf(cells.rect)));
  readNumbers(options.dtype, cells.at(cells.rect.left, cells.rect.top) + index * options.dtype.itemSize,
              static_cast<std::size_t>(cells.cellBytes), values.size(), values.data());
  Component component{index, summarize(values), {}, standOut(values, options.limit, kMostOutliers)};
  if (component.summary.count > 0) {
    component.bins =
        histogram(values, component.summary.percentiles.front(), component.summary.percentiles.back(), kBins);
  }
  return component;
}

CellPair cellAt(const Rect& rect, std::size_t index) {
  const auto columns = static_cast<std::size_t>(columnsOf(rect));
  return {rect.left + static_cast<std::int32_t>(index % columns),
          rect.top + static_cast<std::int32_t>(index / columns)};
}

std::string shortText(double value) { return fmt::format("{:.7g}", value); }

std::string summaryTable(const std::vector<Component>& components) {
  std::vector<Column> columns = {{"component", true}, {"minimum", true}};
  for (const double percent : kPercents) columns.push_back({shortText(percent) + "%", true});
  for (const char* title : {"maximum", "mean", "deviation", "not finite", "stand out"})
    columns.push_back({title, true});
  TextRows rows;
  for (const Component& component : components) {
    const Summary& summary = component.summary;
    std::vector<std::string>& row = rows.emplace_back();
    row = {std::to_string(component.index), shortText(summary.least)};
    for (std::size_t i = 0; i < kPercents.size(); ++i) {
      row.push_back(summary.count > 0 ? shortText(summary.percentiles[i]) : "-");
    }
    for (const double value : {summary.most, summary.mean, summary.deviation}) row.push_back(shortText(value));
    row.push_back(std::to_string(summary.others));
    row.push_back(std::to_string(component.outliers.count));
  }
  return textTable(columns, rows);
}

std::string bar(std::size_t count, std::size_t most) {
  const double share = static_cast<double>(count) / static_cast<double>(std::max<std::size_t>(most, 1));
  const auto length = static_cast<std::size_t>(std::ceil(share * kLongestBar));  // something is never nothing
  return std::string(length, '#');
}

std::string histogramText(const Component& component) {
  const Histogram& bins = component.bins;
  std::size_t most = std::max(bins.below, bins.above);
  for (const Bin& bin : bins.bins) most = std::max(most, bin.count);
  TextRows rows;
  const auto add = [&](const std::string& low, const std::string& high, std::size_t count) {
    rows.push_back({low, high, std::to_string(count), bar(count, most)});
  };
  if (bins.below > 0) add(shortText(component.summary.least), shortText(bins.bins.front().low), bins.below);
  for (const Bin& bin : bins.bins) add(shortText(bin.low), shortText(bin.high), bin.count);
  if (bins.above > 0) add(shortText(bins.bins.back().high), shortText(component.summary.most), bins.above);
  return fmt::format("\ncomponent {}\n{}", component.index,
                     textTable({{"from", true}, {"to", true}, {"cells", true}, {""}}, rows));
}

std::string outlierText(const Subject& subject, const std::vector<Component>& components, double limit) {
  TextRows rows;
  for (const Component& component : components) {
    for (const Outlier& outlier : component.outliers.strongest) {
      const CellPair cell = cellAt(subject.cells.rect, outlier.index);
      rows.push_back({std::to_string(component.index), std::to_string(cell.x), std::to_string(cell.y),
                      shortText(outlier.value), shortText(component.outliers.median),
                      fmt::format("{:+.1f}", outlier.distance)});
    }
  }
  const std::string title = fmt::format("\ncells that stand out: more than {:.7g} spreads from the median", limit);
  if (rows.empty()) return title + ": none\n";
  return fmt::format(
      "{}, the {} strongest of each component\n{}", title, kMostOutliers,
      textTable({{"component", true}, {"x", true}, {"y", true}, {"value", true}, {"median", true}, {"spreads", true}},
                rows));
}

std::string text(const Subject& subject, const std::vector<Component>& components, const Options& options) {
  const Rect& rect = subject.cells.rect;
  std::string report =
      fmt::format("cells {} of area {} ({}), type {}: {} cells of {} x {}\n\n{}", toText(rect), subject.area.id,
                  toText(subject.area), subject.area.type, columnsOf(rect) * rowsOf(rect), subject.valuesPerCell,
                  options.dtype.descr, summaryTable(components));
  for (const Component& component : components) {
    if (component.summary.count > 0) report += histogramText(component);
  }
  return report + outlierText(subject, components, options.limit);
}

Json jsonOf(const Component& component, const Rect& rect) {
  const Summary& summary = component.summary;
  Json json{{"component", component.index}, {"count", summary.count}, {"not_finite", summary.others}};
  if (summary.count == 0) return json;
  json.update({{"minimum", summary.least},
               {"maximum", summary.most},
               {"mean", summary.mean},
               {"standard_deviation", summary.deviation}});
  for (std::size_t i = 0; i < kPercents.size(); ++i) {
    json["percentiles"][shortText(kPercents[i])] = summary.percentiles[i];
  }
  json["histogram"] = {{"below", component.bins.below}, {"above", component.bins.above}, {"bins", Json::array()}};
  for (const Bin& bin : component.bins.bins) json["histogram"]["bins"].push_back({bin.low, bin.high, bin.count});
  Json& outliers = json["outliers"] = {{"median", component.outliers.median},
                                       {"spread", component.outliers.spread},
                                       {"count", component.outliers.count},
                                       {"strongest", Json::array()}};
  for (const Outlier& outlier : component.outliers.strongest) {
    const CellPair cell = cellAt(rect, outlier.index);
    outliers["strongest"].push_back(
        {{"x", cell.x}, {"y", cell.y}, {"value", outlier.value}, {"spreads", outlier.distance}});
  }
  return json;
}

std::string json(const Subject& subject, const std::vector<Component>& components, const Options& options) {
  const Rect& rect = subject.cells.rect;
  Json json{{"file", options.file},
            {"screen", subject.area.screen},
            {"type", subject.area.type},
            {"area", subject.area.id},
            {"rect", {rect.left, rect.top, rect.right, rect.bottom}},
            {"dtype", options.dtype.descr},
            {"outlier_limit", options.limit},
            {"components", Json::array()}};
  for (const Component& component : components) json["components"].push_back(jsonOf(component, rect));
  return jsonText(json);
}

void stats(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  Subject subject;
  subject.area = chooseArea(areasOfType(session, options.type, options.screen), options.rect);
  subject.cells = readCells(session, subject.area, options.rect.value_or(subject.area.rect));
  subject.valuesPerCell = valuesPerCell(subject.cells.cellBytes, options.dtype);
  session.close();
  const std::size_t first = options.component.value_or(0);
  const std::size_t last = options.component.value_or(subject.valuesPerCell - 1);
  requireComponent(subject.cells.cellBytes, options.dtype, last);
  std::vector<Component> components;
  for (std::size_t i = first; i <= last; ++i) components.push_back(describe(subject, options, i));
  context.output.print(options.json ? json(subject, components, options) : text(subject, components, options));
}

}  // namespace

void addCoefStatsCommand(CommandGroup& coef) {
  const auto [command, options] = coef.add("stats", "The numbers of a stored block", &Options::file, stats);
  command.footer(
      "Percentiles are linear between the two nearest values; the deviation is divided by the number of cells. The\n"
      "histogram goes from the 1st to the 99th percentile; what lies beyond is counted in a first and a last line.\n"
      "A spread is 1.4826 x the median absolute deviation from the median (where more than half the cells are equal,\n"
      "1.2533 x the mean one): a standard deviation that a few wild cells do not move.");
  addFile(command, options.file);
  command.add_option("--type", options.type, "The coefficient type")->required();
  command.add_option("--screen", options.screen, "Only areas of this screen");
  addRect(command, options.rect, "The cells, both edges inclusive [the whole area, if there is one]");
  addDtype(command, options.dtype, "Type of the numbers in a cell (uint16, float32, ...); it is not stored")
      ->required();
  command.add_option("--component", options.component, "Only this number of each cell, from 0 [all]");
  command.add_option("--outliers", options.limit, "Spreads from the median from which cells stand out")
      ->capture_default_str()
      ->check(CLI::NonNegativeNumber);
  command.add_flag("--json", options.json, "Write JSON");
}

}  // namespace tovrtool
