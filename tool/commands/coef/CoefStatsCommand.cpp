#include <fmt/core.h>

#include <algorithm>
#include <cmath>

#include "client/base/Error.h"
#include "client/cells/CellBlock.h"
#include "client/cells/CellNumbers.h"
#include "client/cells/NumberForm.h"
#include "client/checks/JsonForms.h"
#include "client/reading/NumberForms.h"
#include "client/statistics/CabinetReport.h"
#include "client/statistics/Statistics.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/commands/OpenDatabase.h"
#include "tool/commands/coef/CabinetTables.h"
#include "tool/commands/coef/CellArguments.h"
#include "tool/io/Message.h"
#include "tool/io/TextTable.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  CellQuery cells;
  std::optional<std::size_t> component;
  double limit = 6;
  std::optional<CellPair> cabinet;
  bool byArea = false;
  std::size_t worst = 20;
  std::optional<CabinetTable> csv;
  bool json = false;
};

constexpr std::size_t kBins = 10;
constexpr std::size_t kMostOutliers = 10;
constexpr double kLongestBar = 40;
constexpr double kDigits = 1e4;  // computed numbers are told to this part of their deviation

// What all of the report is about.
struct Subject {
  CellAnswer cells;
  NumberForm form;
  Rect screen{};  // of the first area
  std::size_t valuesPerCell = 0;

  const Rect& rect() const { return cells.cells.rect; }
};

struct Component {
  std::size_t index = 0;
  Summary summary;
  Histogram bins;
  Outliers outliers;

  std::string text(double computed) const { return numberText(computed, summary.deviation / kDigits); }
};

NumberGrid numbersOf(const Subject& subject, std::size_t component) {
  const CellBlock& cells = subject.cells.cells;
  NumberGrid numbers{cells.rect,
                     std::vector<double>(static_cast<std::size_t>(columnsOf(cells.rect) * rowsOf(cells.rect)))};
  readNumbers(subject.form, cells.at(cells.rect.left, cells.rect.top) + component * traitsOf(subject.form.dtype).bytes,
              static_cast<std::size_t>(cells.cellBytes), numbers.values.size(), numbers.values.data());
  return numbers;
}

Component describe(const Subject& subject, const Options& options, std::size_t index) {
  const std::vector<double> values = numbersOf(subject, index).values;
  Component component{index, summarize(values), {}, findOutliers(values, options.limit, kMostOutliers)};
  if (component.summary.count > 0) {
    component.bins =
        histogram(values, component.summary.percentiles.front(), component.summary.percentiles.back(), kBins);
  }
  return component;
}

std::string summaryTable(const std::vector<Component>& components, const NumberForm& form) {
  std::vector<Column> columns = {{"component", true}, {"minimum", true}};
  for (const double percent : kPercents) columns.push_back({numberText(percent) + "%", true});
  for (const char* title : {"maximum", "mean", "deviation", "not finite", "stand out"})
    columns.push_back({title, true});
  TextRows rows;
  for (const Component& component : components) {
    const Summary& summary = component.summary;
    std::vector<std::string>& row = rows.emplace_back();
    row.push_back(std::to_string(component.index));
    if (summary.count == 0) {
      row.resize(columns.size() - 2, "-");
    } else {
      row.push_back(form.text(summary.minimum));
      for (const double value : summary.percentiles) row.push_back(component.text(value));
      row.push_back(form.text(summary.maximum));
      row.push_back(component.text(summary.mean));
      row.push_back(component.text(summary.deviation));
    }
    row.push_back(std::to_string(summary.notFinite));
    row.push_back(std::to_string(component.outliers.count));
  }
  return textTable(columns, rows);
}

std::string bar(std::size_t count, std::size_t most) {
  const double share = static_cast<double>(count) / static_cast<double>(std::max<std::size_t>(most, 1));
  const auto length = static_cast<std::size_t>(std::ceil(share * kLongestBar));  // something is never nothing
  return std::string(length, '#');
}

std::string histogramText(const Component& component, const NumberForm& form) {
  const Histogram& bins = component.bins;
  std::size_t most = std::max(bins.below, bins.above);
  for (const Bin& bin : bins.bins) most = std::max(most, bin.count);
  TextRows rows;
  const auto add = [&](const std::string& low, const std::string& high, std::size_t count) {
    rows.push_back({low, high, std::to_string(count), bar(count, most)});
  };
  if (bins.below > 0) add(form.text(component.summary.minimum), component.text(bins.bins.front().low), bins.below);
  for (const Bin& bin : bins.bins) add(component.text(bin.low), component.text(bin.high), bin.count);
  if (bins.above > 0) add(component.text(bins.bins.back().high), form.text(component.summary.maximum), bins.above);
  return fmt::format("\ncomponent {}\n{}", component.index,
                     textTable({{"from", true}, {"to", true}, {"cells", true}, {""}}, rows));
}

std::string outlierText(const Subject& subject, const std::vector<Component>& components, double limit) {
  const NumberGrid places{subject.rect(), {}};
  TextRows rows;
  for (const Component& component : components) {
    for (const Outlier& outlier : component.outliers.farthest) {
      const CellPair cell = places.cell(outlier.index);
      rows.push_back({std::to_string(component.index), std::to_string(cell.x), std::to_string(cell.y),
                      subject.form.text(outlier.value), component.text(component.outliers.median),
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

std::string heading(const Subject& subject) {
  const std::vector<StoredArea>& areas = subject.cells.areas;
  const std::string place = areas.size() > 1 ? fmt::format("{} areas of {}", areas.size(), areas.front().screen)
                                             : fmt::format("area {} ({})", areas.front().id, toText(areas.front()));
  return printable(fmt::format("cells {} of {}, type {}: {} cells of {} x {}", toText(subject.rect()), place,
                               areas.front().type, columnsOf(subject.rect()) * rowsOf(subject.rect()),
                               subject.valuesPerCell, toText(subject.form))) +
         "\n\n";
}

std::string asText(const Subject& subject, const std::vector<Component>& components, const Options& options) {
  std::string report = heading(subject) + summaryTable(components, subject.form);
  for (const Component& component : components) {
    if (component.summary.count > 0) report += histogramText(component, subject.form);
  }
  return report + outlierText(subject, components, options.limit);
}

Json jsonOf(const Component& component, const Rect& rect) {
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

Json jsonHead(const Subject& subject, const Options& options) {
  const std::vector<StoredArea>& areas = subject.cells.areas;
  Json json{{"file", options.file}, {"screen", areas.front().screen}, {"type", areas.front().type}};
  for (const StoredArea& area : areas) json["areas"].push_back(area.id);
  json["rect"] = rectJson(subject.rect());
  addJson(json, subject.form);
  json["outlier_limit"] = options.limit;
  json["components"] = Json::array();
  return json;
}

std::string asJson(const Subject& subject, const std::vector<Component>& components, const Options& options) {
  Json json = jsonHead(subject, options);
  for (const Component& component : components) json["components"].push_back(jsonOf(component, subject.rect()));
  return jsonText(json);
}

std::string blockReport(const Subject& subject, const std::vector<std::size_t>& indices, const Options& options) {
  std::vector<Component> components;
  for (const std::size_t index : indices) components.push_back(describe(subject, options, index));
  return options.json ? asJson(subject, components, options) : asText(subject, components, options);
}

std::vector<Rect> partsOf(const Subject& subject, const Options& options) {
  if (options.cabinet) return cabinetsIn(subject.rect(), {subject.screen.left, subject.screen.top}, *options.cabinet);
  std::vector<Rect> parts;
  for (const StoredArea& area : subject.cells.areas) parts.push_back(*common(area.rect, subject.rect()));
  return parts;
}

std::string cabinetReport(const Subject& subject, const std::vector<std::size_t>& indices, const Options& options) {
  const std::vector<Rect> parts = partsOf(subject, options);
  std::vector<CabinetComponent> components;
  for (const std::size_t index : indices) {
    components.push_back({index, reportCabinets(numbersOf(subject, index), parts,
                                                {endsOf(subject.form), options.limit, options.worst})});
  }
  if (options.csv) return cabinetCsv(components, subject.form, *options.csv);
  if (!options.json) return heading(subject) + cabinetText(components, subject.form);
  Json json = jsonHead(subject, options);
  for (const CabinetComponent& component : components)
    json["components"].push_back(cabinetJson(component, subject.form));
  return jsonText(json);
}

Subject read(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  Subject subject;
  CellQuery query = options.cells;
  const bool acrossAreas = options.byArea && !query.areaId;  // none of their figures has cells between them
  query.mosaic = query.mosaic || acrossAreas;
  if (acrossAreas) query.fill = 0;
  subject.cells = findCells(session, query);
  session.close();
  if (acrossAreas) subject.cells.filled = 0;
  noteAnswer(subject.cells, query.form);
  subject.form = requireForm(subject.cells.areas, options.cells.form);
  subject.screen = subject.cells.areas.front().screenRect.value_or(subject.rect());
  subject.valuesPerCell = valuesPerCell(subject.cells.cells.cellBytes, subject.form.dtype);
  return subject;
}

void stats(Context& context, const Options& options) {
  const Subject subject = read(context, options);
  const std::size_t first = options.component.value_or(0);
  const std::size_t last = options.component.value_or(subject.valuesPerCell - 1);
  requireComponent(subject.cells.cells.cellBytes, subject.form.dtype, last);
  std::vector<std::size_t> indices;
  for (std::size_t i = first; i <= last; ++i) indices.push_back(i);
  const bool byPart = options.cabinet || options.byArea;
  if (options.csv && !byPart) throw Error(kInvalid, "--csv goes with --cabinet or --by-area");
  context.output.print(byPart ? cabinetReport(subject, indices, options) : blockReport(subject, indices, options));
}

CabinetTable parseTable(const std::string& name) {
  if (name == "cabinets") return CabinetTable::kCabinets;
  if (name == "seams") return CabinetTable::kSeams;
  if (name == "worst") return CabinetTable::kWorst;
  throw std::invalid_argument("'" + name + "' is not one of cabinets, seams, worst");
}

void addCabinetOptions(CLI::App& command, Options& options) {
  CLI::Option* cabinet = addParsed(command, "--cabinet", options.cabinet, parseSize,
                                   "Figures of every cabinet of this size; the first begins at the screen's corner");
  cabinet->type_name("COLUMNSxROWS");
  command.add_flag("--by-area", options.byArea, "The same of every stored area")->excludes(cabinet);
  command.add_option("--worst", options.worst, "How many of the worst cells to list, with --cabinet or --by-area")
      ->capture_default_str();
  addParsed(command, "--csv", options.csv, parseTable,
            "Write one table as CSV, with --cabinet or --by-area: cabinets, seams or worst")
      ->type_name("TABLE")
      ->excludes("--json");
}

}  // namespace

void addCoefStatsCommand(CommandGroup& coef) {
  const auto [command, options] = coef.add("stats", "The numbers of stored cells", &Options::file, stats);
  command.footer(
      "Percentiles are linear between the two nearest values; the deviation is divided by the number of cells. The\n"
      "histogram goes from the 1st to the 99th percentile; what lies beyond is counted in a first and a last line.\n"
      "A spread is 1.4826 x the median absolute deviation from the median (where more than half the cells are equal,\n"
      "1.2533 x the mean one): a standard deviation that a few wild cells do not move.\n\n"
      "With --cabinet or --by-area: the figures of every part; the seams, each the difference of the means of the two\n"
      "lines of cells that adjoin; how many cells have the numbers at the ends of their type, such as 0 and 65535; "
      "and\n"
      "the cells farthest from the median of their part.");
  addFile(command, options.file);
  addCells(command, options.cells);
  command.add_option("--component", options.component, "Only this number of each cell, from 0 [all]");
  command.add_option("--outliers", options.limit, "Spreads from the median from which cells stand out")
      ->capture_default_str()
      ->check(atLeast(0));
  addJsonFlag(command, options.json);
  addCabinetOptions(command, options);
}

}  // namespace tovrdb::tool
