#include "tool/report/ReportPage.h"

#include <map>

#include "client/checks/JsonForms.h"
#include "tool/report/PageTemplate.h"

namespace tovrdb::tool {
namespace {

Json areasOf(const ReportContent& content, const CellSet& set) {
  Json areas = Json::array();
  for (const std::size_t index : set.areas) {
    const ReportArea& each = content.areas[index];
    Json area{{"id", each.area.id}, {"rect", rectJson(each.area.rect)}};
    if (!each.fault.empty()) area["fault"] = each.fault;
    areas.push_back(std::move(area));
  }
  return areas;
}

Json setJson(const ReportContent& content, const ReportSet& each) {
  const CellSet& set = each.set;
  Json json{{"screen", set.screen},          {"screen_rect", rectJson(set.screenRect)}, {"type", set.type},
            {"rect", rectJson(set.rect)},    {"dtype", nameOf(set.form.dtype)},         {"unit", set.form.unit},
            {"areas", areasOf(content, set)}};
  if (!each.values.is_null()) json["values"] = each.values;
  if (!each.difference.is_null()) json["difference"] = each.difference;
  return json;
}

Json dataOf(const ReportContent& content) {
  Json data{{"format", 1},
            {"tool", "tovrdb " TOVRDB_VERSION},
            {"file", content.file},
            {"made", content.made},
            {"ok", soundnessOf(content.verdicts) != Soundness::kFault},
            {"checks", checksJson(content.verdicts)}};
  if (!content.against.empty()) data["against"] = content.against;
  if (content.cabinet) data["cabinet"] = {content.cabinet->x, content.cabinet->y};
  data["sets"] = Json::array();
  for (const ReportSet& set : content.sets) data["sets"].push_back(setJson(content, set));
  return data;
}

// Escapes every '<', so that the data cannot end the element that contains them.
std::string embedded(const Json& data) {
  const std::string text = data.dump(-1, ' ', true, Json::error_handler_t::replace);
  std::string safe;
  safe.reserve(text.size());
  for (const char character : text) {
    if (character == '<') {
      safe += "\\u003c";
    } else {
      safe += character;
    }
  }
  return safe;
}

}  // namespace

std::string reportPage(const ReportContent& content) {
  const std::map<std::string, std::string> parts = {{"title", htmlText(content.file)},  {"style", kPageStyle},
                                                    {"style-hash", kPageStyleHash},     {"script", kPageScript},
                                                    {"script-hash", kPageScriptHash},   {"body", bodyHtml(content)},
                                                    {"data", embedded(dataOf(content))}};
  const std::string frame = kPageHtml;
  std::string page;
  std::size_t from = 0;
  for (std::size_t open = frame.find("{{"); open != std::string::npos; open = frame.find("{{", from)) {
    const std::size_t close = frame.find("}}", open);
    page.append(frame, from, open - from);
    page += parts.at(frame.substr(open + 2, close - open - 2));
    from = close + 2;
  }
  return page.append(frame, from, std::string::npos);
}

}  // namespace tovrdb::tool
