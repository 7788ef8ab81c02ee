#include <fmt/format.h>

#include <cmath>

#include "client/cells/NumberForm.h"
#include "client/checks/JsonForms.h"
#include "tool/io/TextTable.h"
#include "tool/statistics/StatisticsText.h"

namespace tovrdb::tool {
namespace {

constexpr std::size_t kMostSeams = 20;  // for people; the other forms have all

std::vector<std::string> endTitles(const NumberForm& form) {
  std::vector<std::string> titles;
  for (const double end : endsOf(form)) titles.push_back("at " + form.text(end));
  return titles;
}

std::string partsText(const CabinetReport& report, const NumberForm& form) {
  std::vector<Column> columns = {{"cabinet"},       {"cells", true}, {"minimum", true},  {"median", true},
                                 {"maximum", true}, {"mean", true},  {"deviation", true}};
  for (const std::string& title : endTitles(form)) columns.push_back({title, true});
  for (const char* title : {"not finite", "stand out"}) columns.push_back({title, true});
  TextRows rows;
  for (const PartFigures& part : report.parts) {
    const Summary& summary = part.summary;
    const bool any = summary.count > 0;
    const double step = summary.deviation / 1e4;
    const auto computed = [&](double value) { return any ? numberText(value, step) : "-"; };
    rows.push_back({toText(part.rect), std::to_string(summary.count + summary.notFinite),
                    any ? form.text(summary.minimum) : "-", computed(part.median),
                    any ? form.text(summary.maximum) : "-", computed(summary.mean), computed(summary.deviation)});
    for (const std::size_t count : part.atEnds) rows.back().push_back(std::to_string(count));
    rows.back().push_back(std::to_string(summary.notFinite));
    rows.back().push_back(std::to_string(part.outliers));
  }
  return textTable(columns, rows);
}

std::string seamsText(const CabinetReport& report) {
  if (report.seams.empty()) return "\nseams: none\n";
  const std::vector<std::size_t> order = steepestSeams(report.seams, kMostSeams);
  const double step = std::abs(report.seams[order.front()].difference) / 1e4;
  TextRows rows;
  for (const std::size_t index : order) {
    const Seam& seam = report.seams[index];
    rows.push_back({toText(report.parts[seam.first].rect), toText(report.parts[seam.second].rect), toText(seam.line),
                    numberText(seam.difference, step)});
  }
  return fmt::format("\nseams, {} of {}: mean of the second's line of cells less that of the first's\n{}", rows.size(),
                     report.seams.size(), textTable({{"first"}, {"second"}, {"line"}, {"difference", true}}, rows));
}

std::string worstText(const CabinetReport& report, const NumberForm& form) {
  if (report.worst.empty()) return "\nworst cells: none\n";
  TextRows rows;
  for (const WorstCell& worst : report.worst) {
    const PartFigures& part = report.parts[worst.part];
    rows.push_back({std::to_string(worst.cell.x), std::to_string(worst.cell.y), form.text(worst.value),
                    numberText(part.median, part.summary.deviation / 1e4), fmt::format("{:+.1f}", worst.distance),
                    toText(part.rect)});
  }
  return "\nworst cells, by their distance from their cabinet's median\n" +
         textTable({{"x", true}, {"y", true}, {"value", true}, {"median", true}, {"spreads", true}, {"cabinet"}}, rows);
}

std::string partsCsv(const std::vector<CabinetStatistics>& components, const NumberForm& form) {
  std::string text = "component,left,top,right,bottom,cells,not_finite,minimum,median,maximum,mean,standard_deviation";
  for (const double end : endsOf(form)) text += ",at_" + numberText(end);
  text += ",stand_out\n";
  for (const auto& [index, report] : components) {
    for (const PartFigures& part : report.parts) {
      const Summary& summary = part.summary;
      text +=
          fmt::format("{},{},{},{}", index, toText(part.rect), summary.count + summary.notFinite, summary.notFinite);
      for (const double value : {summary.minimum, part.median, summary.maximum, summary.mean, summary.deviation}) {
        text += summary.count > 0 ? "," + numberText(value) : ",";
      }
      text += fmt::format(",{},{}\n", fmt::join(part.atEnds, ","), part.outliers);
    }
  }
  return text;
}

std::string seamsCsv(const std::vector<CabinetStatistics>& components) {
  std::string text = "component,first_left,first_top,second_left,second_top,left,top,right,bottom,difference\n";
  for (const auto& [index, report] : components) {
    for (const Seam& seam : report.seams) {
      const Rect& first = report.parts[seam.first].rect;
      const Rect& second = report.parts[seam.second].rect;
      text += fmt::format("{},{},{},{},{},{},{}\n", index, first.left, first.top, second.left, second.top,
                          toText(seam.line), numberText(seam.difference));
    }
  }
  return text;
}

std::string worstCsv(const std::vector<CabinetStatistics>& components) {
  std::string text = "component,column,row,value,median,spreads,left,top,right,bottom\n";
  for (const auto& [index, report] : components) {
    for (const WorstCell& worst : report.worst) {
      const PartFigures& part = report.parts[worst.part];
      text += fmt::format("{},{},{},{},{},{},{}\n", index, worst.cell.x, worst.cell.y, numberText(worst.value),
                          numberText(part.median), numberText(worst.distance), toText(part.rect));
    }
  }
  return text;
}

Json jsonOf(const PartFigures& part) {
  const Summary& summary = part.summary;
  Json json{{"rect", rectJson(part.rect)}, {"count", summary.count}, {"not_finite", summary.notFinite}};
  if (summary.count > 0) {
    json.update({{"minimum", summary.minimum},
                 {"maximum", summary.maximum},
                 {"mean", summary.mean},
                 {"standard_deviation", summary.deviation},
                 {"median", part.median}});
  }
  json["at_ends"] = part.atEnds;
  json["stand_out"] = part.outliers;
  return json;
}

}  // namespace

std::string cabinetText(const std::vector<CabinetStatistics>& components, const NumberForm& form) {
  std::string text;
  for (const auto& [index, report] : components) {
    text += fmt::format("{}component {}\n", text.empty() ? "" : "\n", index);
    text += partsText(report, form) + seamsText(report) + worstText(report, form);
  }
  return text;
}

std::string cabinetCsv(const std::vector<CabinetStatistics>& components, const NumberForm& form, CabinetTable table) {
  if (table == CabinetTable::kSeams) return seamsCsv(components);
  return table == CabinetTable::kWorst ? worstCsv(components) : partsCsv(components, form);
}

Json cabinetJson(const CabinetStatistics& component, const NumberForm& form) {
  Json json{{"component", component.index}, {"ends", endsOf(form)}};
  for (const char* list : {"cabinets", "seams", "worst"}) json[list] = Json::array();
  for (const PartFigures& part : component.report.parts) json["cabinets"].push_back(jsonOf(part));
  for (const Seam& seam : component.report.seams) {
    json["seams"].push_back(
        {{"between", {seam.first, seam.second}}, {"line", rectJson(seam.line)}, {"difference", seam.difference}});
  }
  for (const WorstCell& worst : component.report.worst) {
    json["worst"].push_back({{"cabinet", worst.part},
                             {"cell", {worst.cell.x, worst.cell.y}},
                             {"value", worst.value},
                             {"spreads", worst.distance}});
  }
  return json;
}

}  // namespace tovrdb::tool
