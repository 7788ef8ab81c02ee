#include <fmt/core.h>

#include <algorithm>

#include "client/base/Text.h"
#include "client/cells/CoveredCells.h"
#include "client/checks/Check.h"
#include "client/contents/RowNames.h"
#include "client/contents/Screens.h"
#include "client/session/SqlQuery.h"

namespace tovrdb {
namespace {

// The library reads the INTEGER columns of these tables as 32-bit numbers.
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

// The older screen that the library finds in place of `screen`: by rectangle in a database of type 0, by name in
// type 1.
const StoredScreen* foundInstead(const std::vector<StoredScreen>& older, const StoredScreen& screen, int type) {
  const auto hides = [&](const StoredScreen& each) {
    return type == 1 ? each.name == screen.name : holds(each.rect, screen.rect);
  };
  const auto found = std::find_if(older.begin(), older.end(), hides);
  return found != older.end() ? &*found : nullptr;
}

// Reads the rows without the library, which refuses all screens if one is damaged.
void checkReachable(Session& session, Verdict& verdict) {
  const int type = session.manager().getDBType();
  tovr::IDBOperate& connection = session.connection();
  const auto edge = [&](int column) { return static_cast<std::int32_t>(columnNumber(connection, column)); };
  std::vector<StoredScreen> screens;
  visitRows(connection, "select id, screenname, left, top, right, bottom from Screen_Info order by id", [&] {
    const StoredScreen screen{
        columnNumber(connection, 0), columnText(connection, 1), {edge(2), edge(3), edge(4), edge(5)}};
    const StoredScreen* found = type <= 1 ? foundInstead(screens, screen, type) : nullptr;
    if (found != nullptr && type == 1) {
      verdict.warnings.add(fmt::format("there are several screens {}: the library finds only the first", screen.name));
    } else if (found != nullptr) {
      verdict.warnings.add(
          fmt::format("screen {} lies in the rectangle of screen {}, {}: the library finds only the latter",
                      screen.name, found->name, toText(found->rect)));
    }
    screens.push_back(screen);
  });
  verdict.detail = counted(screens.size(), "screen");
}

}  // namespace

void checkLengths(const std::vector<Placement>& areas, const BlockSizes& sizes, Verdict& verdict) {
  verdict.detail = counted(areas.size(), "area") + ", rectangle x bytes per cell";
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
  verdict.detail = counted(areas.size(), "area");
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

}  // namespace tovrdb
