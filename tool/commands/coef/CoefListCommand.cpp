#include <algorithm>

#include "client/checks/JsonForms.h"
#include "client/contents/AreaFilter.h"
#include "client/reading/NumberForms.h"
#include "tool/commands/Arguments.h"
#include "tool/commands/Command.h"
#include "tool/commands/Commands.h"
#include "tool/io/TextTable.h"

namespace tovrdb::tool {
namespace {

struct Options {
  std::string file;
  AreaFilter filter;
  bool json = false;
};

std::string asText(const std::vector<StoredArea>& areas) {
  std::vector<Column> columns = {{"id", true},  {"screen"},      {"type", true},       {"area", true},
                                 {"rectangle"}, {"block", true}, {"cell bytes", true}, {"stored bytes", true},
                                 {"version"}};
  const bool faulty =
      std::any_of(areas.begin(), areas.end(), [](const StoredArea& area) { return !area.fault.empty(); });
  if (faulty) columns.push_back({"fault"});
  TextRows rows;
  for (const StoredArea& area : areas) {
    rows.push_back({std::to_string(area.id), area.screen, std::to_string(area.type), std::to_string(area.number),
                    toText(area.rect), std::to_string(area.blockId), std::to_string(area.cellBytes),
                    std::to_string(area.storedBytes), area.version});
    if (faulty) rows.back().push_back(area.fault);
  }
  return textTable(columns, rows);
}

std::string asJson(const std::vector<StoredArea>& areas) {
  Json list = Json::array();
  for (const StoredArea& area : areas) {
    Json object{{"id", area.id},
                {"screen", area.screen},
                {"type", area.type},
                {"area_number", area.number},
                {"rect", rectJson(area.rect)},
                {"block_id", area.blockId},
                {"bytes_per_cell", area.cellBytes},
                {"stored_bytes", area.storedBytes},
                {"version", area.version}};
    if (const auto form = keptForm(area)) addJson(object, *form);
    if (!area.fault.empty()) object["fault"] = area.fault;
    list.push_back(std::move(object));
  }
  return jsonText(list);
}

void list(Context& context, const Options& options) {
  Session session = openDatabase(context, options.file);
  const std::vector<StoredArea> areas = areasThatPass(session, options.filter);
  context.output.print(options.json ? asJson(areas) : asText(areas));
}

}  // namespace

void addCoefListCommand(CommandGroup& coef) {
  const auto [command, options] = coef.add("list", "List the stored areas", &Options::file, list);
  addFile(command, options.file);
  addCoefType(command, options.filter.type)->description("Only areas of this coefficient type");
  command.add_option("--screen", options.filter.screen, "Only areas of this screen");
  addRect(command, options.filter.rect, "Only areas that have cells in this rectangle");
  addJsonFlag(command, options.json);
}

}  // namespace tovrdb::tool
