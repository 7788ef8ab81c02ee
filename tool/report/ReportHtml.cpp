#include <fmt/format.h>

#include <algorithm>

#include "client/cells/NumberForm.h"
#include "tool/io/Message.h"
#include "tool/report/ReportPage.h"

namespace tovrdb::tool {
namespace {

constexpr std::size_t kMostRows = 500;  // of a table that works without scripts

constexpr std::size_t kMostFindings = 8;  // of one check

using Cells = std::vector<std::string>;  // texts, not markup

std::string row(const char* tag, const Cells& cells, const char* attributes = "") {
  std::string text = "<tr>";
  for (const std::string& cell : cells) text += fmt::format("<{0}{1}>{2}</{0}>", tag, attributes, htmlText(cell));
  return text + "</tr>\n";
}

// Scripts make tables sortable, except lists of facts.
std::string table(const std::string& caption, const Cells& titles, const std::vector<Cells>& rows,
                  const char* kind = "sortable") {
  std::string text = fmt::format("<table class=\"{}\"><caption>{}</caption>\n<thead>{}</thead>\n<tbody>\n", kind,
                                 htmlText(caption), row("th", titles, " scope=\"col\""));
  for (std::size_t i = 0; i < std::min(rows.size(), kMostRows); ++i) text += row("td", rows[i]);
  text += "</tbody></table>\n";
  if (rows.size() > kMostRows) text += fmt::format("<p>and {} more</p>\n", rows.size() - kMostRows);
  return text;
}

struct VerdictWords {
  const char* kind;  // of the page's style
  const char* check;
  const char* file;
};

const VerdictWords& wordsOf(Soundness soundness) {
  static constexpr VerdictWords kWords[] = {
      {"good", "✓ ok", "✓ The file is sound."},
      {"unusual", "⚠ warning", "⚠ The file is sound; the checks below warn of what is unusual. Nothing is lost."},
      {"bad", "✗ failed",
       "✗ The file has faults: see below. Restore what they name from a sound copy, and keep this file: all else in it "
       "may be newer than the copy."}};
  return kWords[static_cast<int>(soundness)];
}

void addFindings(const Verdict& verdict, const Findings& findings, Soundness soundness, std::vector<Cells>& rows) {
  for (const std::string& line : findings.first(kMostFindings)) {
    rows.push_back({wordsOf(soundness).check, verdict.name, line});
  }
}

std::string checksHtml(const ReportContent& content) {
  std::vector<Cells> rows;
  for (const Verdict& verdict : content.verdicts) {
    rows.push_back({wordsOf(soundnessOf(verdict)).check, verdict.name, verdict.detail});
    addFindings(verdict, verdict.faults, Soundness::kFault, rows);
    addFindings(verdict, verdict.warnings, Soundness::kWarning, rows);
  }
  return table("Checks", {"result", "check", "what was looked at, or found"}, rows);
}

std::string verdictHtml(const ReportContent& content) {
  const auto shown = std::count_if(content.areas.begin(), content.areas.end(),
                                   [](const ReportArea& area) { return area.fault.empty(); });
  const VerdictWords& words = wordsOf(soundnessOf(content.verdicts));
  std::string text = fmt::format("<p class=\"verdict {}\" id=\"verdict\">{}</p>\n", words.kind, words.file);
  text += fmt::format("<p>{} of {} blocks are shown.</p>\n", shown, content.areas.size());
  std::vector<Cells> facts = {{"file", content.file}, {"report made", content.made}};
  std::string changed;
  for (const ReportArea& area : content.areas) changed = std::max(changed, area.area.changed);
  if (!changed.empty()) facts.push_back({"block stored last", changed});
  facts.push_back({"database type", std::to_string(content.facts.type)});
  for (const auto& list : {content.facts.description, content.facts.engine}) {
    for (const Fact& fact : list) facts.push_back({fact.label, fact.value});
  }
  if (!content.against.empty()) facts.push_back({"compared with", content.against});
  text += "<div class=\"columns\">" + table("File", {"what", "value"}, facts, "facts");
  return text + checksHtml(content) + "</div>\n";
}

std::string sizeText(const Rect& rect) { return fmt::format("{} × {}", columnsOf(rect), rowsOf(rect)); }

std::string screensHtml(const ReportContent& content) {
  std::vector<Cells> screens;
  for (const ScreenFacts& each : content.facts.screens) {
    const auto blocks = std::count_if(content.areas.begin(), content.areas.end(),
                                      [&](const ReportArea& area) { return area.area.screenId == each.screen.id; });
    screens.push_back({each.screen.name, toText(each.screen.rect), sizeText(each.screen.rect), std::to_string(blocks)});
  }
  return table("Screens", {"name", "rectangle", "columns × rows", "blocks"}, screens) + mapHtml(content);
}

std::string faultsHtml(const ReportContent& content) {
  std::vector<Cells> faults;
  for (const ReportArea& each : content.areas) {
    if (each.fault.empty()) continue;
    faults.push_back({std::to_string(each.area.id), each.area.screen, std::to_string(each.area.type),
                      toText(each.area.rect), each.fault});
  }
  if (faults.empty()) return "";
  return "<section id=\"faults\" class=\"bad\"><h2>Blocks that are not shown</h2>\n" +
         table("Blocks that are not shown", {"area", "screen", "type", "rectangle", "why"}, faults) + "</section>\n";
}

std::string areasHtml(const ReportContent& content) {
  std::vector<Cells> areas;
  for (const ReportArea& each : content.areas) {
    areas.push_back({std::to_string(each.area.id), each.area.screen, std::to_string(each.area.type),
                     toText(each.area.rect), sizeText(each.area.rect), std::to_string(each.area.cellBytes),
                     each.area.changed});
  }
  return fmt::format(
      "<details><summary>Areas ({})</summary>\n{}</details>\n", areas.size(),
      table("Areas", {"area", "screen", "type", "rectangle", "columns × rows", "bytes per cell", "stored"}, areas));
}

// What differs, in a few words.
struct ChangeText {
  const ReportContent& content;

  std::string operator()(const OnlyBefore&) const { return "only in " + content.against; }
  std::string operator()(const OnlyAfter&) const { return "only in " + content.file; }
  std::string operator()(const FieldDiffers& field) const {
    return fmt::format("{}: '{}' → '{}'", field.field, field.before, field.after);
  }
  std::string operator()(const CellsDiffer& what) const {
    return fmt::format("{} of {} cells changed", what.cells.differing, what.cells.cells);
  }
  std::string operator()(const BytesDiffer& bytes) const {
    return fmt::format("{} → {} bytes, {} changed", bytes.sizeBefore, bytes.sizeAfter, bytes.differing);
  }
  std::string operator()(const Unreadable& faults) const {
    return "damaged, not compared: " + (faults.before.empty() ? faults.after : faults.before);
  }
};

std::string changesHtml(const ReportContent& content) {
  if (content.against.empty()) return "";
  std::vector<Cells> changes;
  for (const Difference& each : content.differences) {
    changes.push_back({each.item, std::visit(ChangeText{content}, each.what)});
  }
  std::string text = "<section id=\"changes\"><h2>What changed</h2>\n";
  if (!content.againstFault.empty()) {
    return text + fmt::format("<p class=\"warning\">{} cannot be compared: {}</p></section>\n",
                              htmlText(content.against), htmlText(content.againstFault));
  }
  if (changes.empty()) return text + fmt::format("<p>Nothing, since {}.</p></section>\n", htmlText(content.against));
  return text + table("Changes since " + content.against, {"what", "change"}, changes) + "</section>\n";
}

std::string jsonNumber(const Json& object, const char* name) {
  const auto found = object.find(name);
  return found == object.end() || !found->is_number() ? "-" : numberText(found->get<double>());
}

std::string statisticsHtml(const std::string& caption, const Json& layer) {
  std::vector<Cells> rows;
  for (const Json& component : layer["components"]) {
    const Json& figures = component["statistics"];
    const Json percentiles = figures.value("percentiles", Json::object());
    Cells& cells = rows.emplace_back();
    cells.push_back(std::to_string(component["component"].get<std::size_t>()));
    for (const char* name : {"count", "not_finite", "minimum"}) cells.push_back(jsonNumber(figures, name));
    for (const char* name : {"1", "50", "99"}) cells.push_back(jsonNumber(percentiles, name));
    for (const char* name : {"maximum", "mean", "standard_deviation"}) cells.push_back(jsonNumber(figures, name));
  }
  return table(caption,
               {"component", "cells", "not finite", "minimum", "1%", "median", "99%", "maximum", "mean", "deviation"},
               rows);
}

std::string setHtml(const ReportSet& set, std::size_t index) {
  const CellSet& cells = set.set;
  std::string text = fmt::format(
      "<section class=\"set\" id=\"set-{0}\" data-set=\"{0}\"><h2>{1}, type {2}</h2>\n"
      "<p>{3} ({4} cells), {5} block{6}, {7} × {8}</p>\n",
      index, htmlText(cells.screen), cells.type, toText(cells.rect), sizeText(cells.rect), cells.areas.size(),
      cells.areas.size() == 1 ? "" : "s", cells.components(), htmlText(toText(cells.form)));
  if (set.values.is_null()) return text + "<p>None of its blocks can be shown.</p></section>\n";
  if (set.changedCells > 0) {
    text += fmt::format("<p class=\"changed\">{} of {} cells changed.</p>\n", set.changedCells, cells.cells());
  }
  text += "<div class=\"viewer\"><noscript><p>The pictures need scripts.</p></noscript></div>\n";
  text += statisticsHtml("Statistics per component, of all cells that could be read", set.values);
  if (!set.difference.is_null())
    text += statisticsHtml("Statistics of the difference, of the cells that changed", set.difference);
  return text + "<div class=\"tables\"></div></section>\n";
}

}  // namespace

std::string htmlText(const std::string& text) {
  std::string escaped;
  for (const char character : validText(printable(text))) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\'':
        escaped += "&#39;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

std::string bodyHtml(const ReportContent& content) {
  std::string text = fmt::format("<header><h1>{}</h1>\n", htmlText(content.file));
  text += "<p class=\"warning\">This page holds calibration data in the clear: whoever has it can read them.</p>\n";
  text += verdictHtml(content) + "</header>\n<main>\n";
  text += "<section id=\"screens\"><h2>Screens</h2>\n" + screensHtml(content) + areasHtml(content) + "</section>\n";
  text += faultsHtml(content) + changesHtml(content);
  if (content.block > 1) {
    text += fmt::format(
        "<p class=\"warning\">The pictures are reduced: each of their cells stands for {0} × {0} of the wall, with the "
        "minimum, mean and maximum. Statistics and tables are of all cells.</p>\n",
        content.block);
  }
  if (content.sets.empty()) text += "<p>There are no blocks to show.</p>\n";
  for (std::size_t i = 0; i < content.sets.size(); ++i) text += setHtml(content.sets[i], i);
  return text + "</main>\n";
}

}  // namespace tovrdb::tool
