#include "tool/database/PlacementChecks.h"

#include <fmt/core.h>

#include "tool/cells/Overlaps.h"
#include "tool/database/RowNames.h"
#include "tool/database/SqlQuery.h"

namespace tovrtool {
namespace {

// Their columns of whole numbers are read by the library as numbers of 32 bits.
constexpr const char* kNumberTables[] = {"DB_Info", "Screen_Info", "Coef_Info", "DataInfo"};

void checkNumbers(Session& session, const std::string& table, const RowNames& names, Verdict& verdict) {
  tovr::IDBOperate& connection = session.connection();
  for (const Row& column : queryRows(connection, fmt::format("pragma table_info({})", table))) {
    if (column[2] != "INTEGER" || column[1] == "id") continue;
    visitRows(connection,
              fmt::format("select id, substr(quote({0}), 1, 40) from {1} where typeof({0}) not in ('integer', 'null')"
                          " or {0} not between -2147483648 and 2147483647 order by id",
                          column[1], table),
              [&] {
                verdict.faults.add(fmt::format("{}: {} is {}, which is not a whole number of 32 bits",
                                               names.of(table, columnNumber(connection, 0)), column[1],
                                               columnText(connection, 1)));
              });
  }
}

// Screens are found by rectangle in a database of type 0 and by name in one of type 1.
void checkReachable(Session& session, Verdict& verdict) {
  const int type = session.manager().getDBType();
  std::map<std::string, std::string> first;  // by what finds it
  tovr::IDBOperate& connection = session.connection();
  std::int64_t count = 0;
  visitRows(connection, "select screenname, left, top, right, bottom from Screen_Info order by id", [&] {
    ++count;
    const std::string name = columnText(connection, 0);
    const std::string rect = fmt::format("{},{},{},{}", columnText(connection, 1), columnText(connection, 2),
                                         columnText(connection, 3), columnText(connection, 4));
    const auto [found, fresh] = first.emplace(type == 1 ? name : rect, name);
    if (fresh || type > 1) return;
    verdict.warnings.add(
        type == 1 ? fmt::format("there are several screens {}: the library finds only the first", name)
                  : fmt::format("screen {} lies on the rectangle of screen {}, {}: the library finds only the latter",
                                name, found->second, rect));
  });
  verdict.detail = fmt::format("{} screens", count);
}

}  // namespace

void checkLengths(const std::vector<Placement>& areas, const BlockSizes& sizes, Verdict& verdict) {
  verdict.detail = fmt::format("{} areas, rectangle x bytes per cell", areas.size());
  for (const Placement& area : areas) {
    const auto size = sizes.find(area.blockId);
    if (!isSound(area.rect)) {
      verdict.faults.add(nameOf(area) + ": its rectangle holds no cells");
    } else if (size != sizes.end() && !fills(size->second.bytes, area.rect, size->second.cellBytes)) {
      verdict.faults.add(fmt::format("{}: its block has {} bytes and not {} x {} x {}", nameOf(area),
                                     size->second.bytes, columnsOf(area.rect), rowsOf(area.rect),
                                     size->second.cellBytes));
    }
  }
}

void checkScreens(Session& session, const RowNames& names, Verdict& verdict) {
  for (const char* table : kNumberTables) checkNumbers(session, table, names, verdict);
  checkReachable(session, verdict);
}

void checkInsideScreens(const std::vector<Placement>& areas, Verdict& verdict) {
  verdict.detail = fmt::format("{} areas", areas.size());
  for (const Placement& area : areas) {
    if (!area.screenRect || holds(*area.screenRect, area.rect)) continue;
    verdict.warnings.add(fmt::format("{} reaches beyond its screen ({})", nameOf(area), toText(*area.screenRect)));
  }
}

void checkOverlaps(const std::vector<Placement>& areas, Verdict& verdict) {
  verdict.detail = "areas of one screen and type; shared cells are read from the one stored first";
  std::map<std::pair<std::int64_t, std::int32_t>, std::vector<const Placement*>> groups;
  for (const Placement& area : areas) groups[{area.screenId, area.type}].push_back(&area);
  for (const auto& [key, group] : groups) {
    std::vector<Rect> rects;
    for (const Placement* area : group) rects.push_back(area->rect);
    const Overlaps overlaps = overlapsAmong(rects, Findings::kMostKept);
    for (const auto& [one, other] : overlaps.named) {
      verdict.warnings.add(fmt::format("{} and {} overlap", nameOf(*group[one]), nameOf(*group[other])));
    }
    verdict.warnings.addCounted(overlaps.pairs - overlaps.named.size());
  }
}

}  // namespace tovrtool
