#include "tool/database/StoredArea.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "storage/StatusCodes.h"
#include "tool/database/LibraryError.h"
#include "tool/database/Screens.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/StoredBlob.h"
#include "tool/database/Tables.h"
#include "tool/io/TextList.h"

namespace tovrtool {
namespace {

// Screens in columns 0 to 5, areas from there on; which areas is left open. Each area has a copy of its screen's name:
// one of millions of bytes would take all memory.
constexpr char kPlacements[] =
    "select s.id is not null, case when length(cast(s.screenname as blob)) <= 1000 then s.screenname else"
    " substr(s.screenname, 1, 1000) || '[... screen ' || s.id || ']' end, s.left, s.top, s.right, s.bottom, i.id, "
    "i.screenid, i.coeftype, i.areaid,"
    " i.coefid, i.left, i.top, i.right, i.bottom, i.multilayersize, hex(i.multilayerlist), i.mtime"
    " from Coef_Info i left join Screen_Info s on s.id = i.screenid where {} order by i.id";

// Four columns of the current row from `first` on: left, top, right, bottom.
Rect rectAtColumn(tovr::IDBOperate& connection, int first) {
  using Limits = std::numeric_limits<std::int32_t>;
  const auto edge = [&](int column) {
    const std::int64_t number = columnNumber(connection, first + column);
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(number, Limits::min(), Limits::max()));
  };
  return {edge(0), edge(1), edge(2), edge(3)};
}

Placement placementOf(tovr::IDBOperate& connection) {
  Placement area;
  area.screen = columnText(connection, 1);
  if (columnNumber(connection, 0) != 0) area.screenRect = rectAtColumn(connection, 2);
  area.id = columnNumber(connection, 6);
  area.screenId = columnNumber(connection, 7);
  area.type = static_cast<std::int32_t>(columnNumber(connection, 8));
  area.number = columnNumber(connection, 9);
  area.blockId = columnNumber(connection, 10);
  area.rect = rectAtColumn(connection, 11);
  area.layers = columnText(connection, 15);
  area.layerList = columnText(connection, 16);
  area.changed = columnText(connection, 17);
  return area;
}

std::string listed(const std::vector<StoredArea>& areas) {
  std::vector<std::string> texts;
  for (const StoredArea& area : areas) texts.push_back(toText(area));
  return shortList(texts, "; ");
}

std::string storedTypes(const std::vector<Placement>& areas) {
  if (areas.empty()) return "the file holds no areas; tovrdb coef put stores them";
  std::set<std::int32_t> types;
  for (const Placement& area : areas) types.insert(area.type);
  std::vector<std::string> texts;
  for (const std::int32_t type : types) texts.push_back(std::to_string(type));
  return "there are areas of type " + shortList(texts);
}

// `areas` with what is stored beside their blocks. `which` chooses the rows of areas: reading what lies behind a blob
// costs as much as the blob.
std::vector<StoredArea> withBlocks(Session& session, std::vector<Placement> placed, const std::string& which) {
  std::vector<StoredArea> areas;
  std::map<std::int64_t, std::vector<std::size_t>> ofBlock;
  for (Placement& placement : placed) {
    ofBlock[placement.blockId].push_back(areas.size());
    static_cast<Placement&>(areas.emplace_back()) = std::move(placement);
  }
  tovr::IDBOperate& connection = session.connection();
  visitRows(connection,
            fmt::format("select id, databitwidth, length(data), version from Coef where id in"
                        " (select coefid from Coef_Info where {})",
                        which),
            [&] {
              for (const std::size_t index : ofBlock[columnNumber(connection, 0)]) {
                areas[index].cellBytes = static_cast<std::int32_t>(columnNumber(connection, 1));
                areas[index].storedBytes = columnNumber(connection, 2);
                areas[index].version = columnText(connection, 3);
              }
            });
  return areas;
}

std::optional<Placement> answeringPlacement(Session& session, std::int32_t type, const std::string& screenName,
                                            const Rect& rect) {
  const int databaseType = session.manager().getDBType();
  if (databaseType > 1) return std::nullopt;  // the library does not know how to look
  const bool byName = databaseType == 1;
  const auto screens = storedScreens(session);
  const auto screen = std::find_if(screens.begin(), screens.end(), [&](const StoredScreen& candidate) {
    return byName ? candidate.name == screenName : holds(candidate.rect, rect);
  });
  if (screen == screens.end()) return std::nullopt;
  const auto areas = placements(session);
  const auto first = std::find_if(areas.begin(), areas.end(), [&](const Placement& candidate) {
    return candidate.screenId == screen->id && candidate.type == type && holds(candidate.rect, rect);
  });
  if (first == areas.end()) return std::nullopt;
  return *first;
}

std::vector<Placement> placementsThat(Session& session, const std::string& qualify) {
  std::vector<Placement> areas;
  visitRows(session.connection(), fmt::format(kPlacements, qualify),
            [&] { areas.push_back(placementOf(session.connection())); });
  return areas;
}

CellBlock cellsOf(const tovr::CoefData& record, const std::shared_ptr<unsigned char[]>& bytes) {
  const std::int32_t cellBytes = record.coefBuffer.databitwidth;
  requireFilled(static_cast<std::size_t>(std::max(record.coefBuffer.datasize, 0)), rectOf(record), cellBytes);
  return {rectOf(record), cellBytes, bytes};
}

// Nothing where it answers from another area, or not at all.
std::optional<CellBlock> readByLibrary(Session& session, const StoredArea& area, const Rect& rect) {
  auto record = session.host().makeRecord<tovr::CoefData>();
  record->coeftype = area.type;
  record->screenname = area.screen;
  setRect(*record, rect);
  const int code = session.manager().queryData(record.get());
  const std::shared_ptr<unsigned char[]> bytes(record->coefBuffer.data);
  if (code != 0 || record->id != area.id) return std::nullopt;
  return cellsOf(*record, bytes);
}

}  // namespace

void requireFilled(std::size_t bytes, const Rect& rect, std::int32_t cellBytes) {
  if (fills(bytes, rect, cellBytes)) return;
  throw statusError(tovr::kCipherFailed,
                    fmt::format("the stored block is damaged: {} bytes are not the cells of {} with {} bytes each",
                                bytes, toText(rect), cellBytes));
}

std::vector<Placement> placements(Session& session) { return placementsThat(session, "1"); }

std::vector<StoredArea> storedAreas(Session& session) { return withBlocks(session, placements(session), "1"); }

StoredArea storedArea(Session& session, const Placement& placement) {
  return withBlocks(session, {placement}, fmt::format("id = {}", placement.id)).front();
}

void requireSound(const Rect& rect, const std::string& whose) {
  if (isSound(rect)) return;
  ToolError error(kDamaged, "{} has the rectangle {}, in which no cells can lie: the file is damaged", whose,
                  toText(rect));
  error.setStatus(tovr::kCipherFailed);
  throw error;
}

std::vector<StoredArea> areasOfType(Session& session, std::int32_t type, const std::string& screen) {
  const std::vector<Placement> all = placements(session);
  std::vector<Placement> chosen;
  std::copy_if(all.begin(), all.end(), std::back_inserter(chosen),
               [&](const Placement& area) { return area.type == type && (screen.empty() || area.screen == screen); });
  if (chosen.empty()) {
    throw libraryError(tovr::kNoMatchingArea,
                       fmt::format("asked for type {}{}; {}", type, screen.empty() ? "" : " of the screen " + screen,
                                   storedTypes(all)));
  }
  for (const Placement& area : chosen) requireSound(area.rect, fmt::format("area {}", area.id));
  return withBlocks(session, std::move(chosen), fmt::format("coeftype = {}", type));
}

std::optional<StoredArea> answeringArea(Session& session, std::int32_t type, const std::string& screen,
                                        const Rect& rect) {
  const auto placement = answeringPlacement(session, type, screen, rect);
  if (!placement) return std::nullopt;
  return storedArea(session, *placement);
}

const StoredArea& chooseArea(const std::vector<StoredArea>& areas, const std::optional<Rect>& rect) {
  if (!rect) {
    if (areas.size() == 1) return areas.front();
    throw ToolError(kUsage, "there are several areas, say which with --rect (and --screen): {}", listed(areas));
  }
  const auto found =
      std::find_if(areas.begin(), areas.end(), [&](const StoredArea& area) { return holds(area.rect, *rect); });
  if (found != areas.end()) return *found;
  throw libraryError(tovr::kNoMatchingArea, fmt::format("asked for {}; there are {}", toText(*rect), listed(areas)));
}

bool screensShareCells(const std::vector<StoredArea>& areas) {
  std::map<std::int64_t, Rect> rects;  // by screen
  for (const StoredArea& area : areas) {
    const auto [entry, fresh] = rects.emplace(area.screenId, area.rect);
    entry->second = united(entry->second, area.rect);
  }
  for (auto one = rects.begin(); one != rects.end(); ++one) {
    const auto meets = [&](const auto& other) { return common(one->second, other.second).has_value(); };
    if (std::any_of(std::next(one), rects.end(), meets)) return true;
  }
  return false;
}

std::string insteadOf(const Rect& rect, const std::vector<StoredArea>& areas) {
  std::vector<std::string> overlapping;
  for (const StoredArea& area : areas) {
    if (common(area.rect, rect)) overlapping.push_back(fmt::format("{} ({})", area.id, toText(area.rect)));
  }
  if (overlapping.empty()) return "there are " + listed(areas);
  return fmt::format("areas that overlap it: {}; read across them with --mosaic", shortList(overlapping));
}

void requireUnmoved(Session& session, const std::vector<StoredArea>& areas) {
  std::vector<std::int64_t> ids;
  for (const StoredArea& area : areas) ids.push_back(area.id);
  std::map<std::int64_t, Placement> present;
  for (Placement& placement : placementsThat(session, fmt::format("i.id in ({})", fmt::join(ids, ", ")))) {
    present.emplace(placement.id, std::move(placement));
  }
  for (const StoredArea& area : areas) {
    const auto found = present.find(area.id);
    if (found != present.end() && found->second.rect == area.rect && found->second.blockId == area.blockId) continue;
    throw statusError(
        tovr::kNoMatchingArea,
        fmt::format("area {} ({}) was moved or deleted since it was looked up: look again", area.id, toText(area)));
  }
}

CellBlock readBlock(Session& session, const StoredArea& area) {
  const auto blob = queryPayload(session, kBlockTable, area.blockId);
  if (!blob) {
    throw statusError(tovr::kCipherFailed, fmt::format("block {} of {} is missing", area.blockId, toText(area)));
  }
  Bytes cells = decipherBlob(session.host().encryption(), *blob);
  requireFilled(cells.size(), area.rect, area.cellBytes);
  return blockOf(area.rect, area.cellBytes, std::move(cells));
}

CellBlock readCells(Session& session, const StoredArea& area, const Rect& rect) {
  if (auto cells = readByLibrary(session, area, rect)) return *std::move(cells);
  return cut(readBlock(session, area), rect);
}

CellBlock queryCells(Session& session, tovr::CoefData& record, const std::function<void(int code)>& require) {
  const int code = session.manager().queryData(&record);
  const std::shared_ptr<unsigned char[]> bytes(record.coefBuffer.data);
  require(code);
  return cellsOf(record, bytes);
}

std::string toText(const Placement& area) { return area.screen + ", " + toText(area.rect); }

}  // namespace tovrtool
