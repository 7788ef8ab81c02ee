#include "client/contents/StoredArea.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <utility>

#include "client/base/Text.h"
#include "client/cells/CoveredCells.h"
#include "client/contents/AreaNames.h"
#include "client/contents/StoredBlob.h"
#include "client/session/Damage.h"
#include "client/session/SqlQuery.h"
#include "storage/BlobFraming.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

// Screens in columns 0 to 5, areas from column 6 on; the placeholder chooses the areas. Each area holds a copy of its
// screen's name, so a name of millions of bytes is cut: the copies would take all memory.
constexpr char kPlacements[] =
    "select s.id is not null, case when length(cast(s.screenname as blob)) <= 1000 then s.screenname else"
    " substr(s.screenname, 1, 1000) || '[... screen ' || s.id || ']' end, s.left, s.top, s.right, s.bottom, i.id, "
    "i.screenid, i.coeftype, i.areaid,"
    " i.coefid, i.left, i.top, i.right, i.bottom, i.multilayersize, hex(i.multilayerlist), i.mtime"
    " from Coef_Info i left join Screen_Info s on s.id = i.screenid where {} order by i.id";

// Left, top, right, bottom from column `first` of the current row.
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

std::string storedTypes(const std::vector<Placement>& areas) {
  if (areas.empty()) return "the file holds no areas";
  std::set<std::int32_t> types;
  for (const Placement& area : areas) types.insert(area.type);
  std::vector<std::string> texts;
  for (const std::int32_t type : types) texts.push_back(std::to_string(type));
  return "there are areas of type " + shortList(texts);
}

// By the key of their block.
using AreasOfBlocks = std::map<std::int64_t, std::vector<StoredArea*>>;

// Reads what is stored beside the blocks whose ids match `which`.
void readFacts(Session& session, const std::string& which, const AreasOfBlocks& areas) {
  tovr::IDBOperate& connection = session.connection();
  const std::string sql = "select id, databitwidth, length(data), version from Coef where id " + which;
  visitRows(connection, sql, [&] {
    const auto found = areas.find(columnNumber(connection, 0));
    if (found == areas.end()) return;
    for (StoredArea* area : found->second) {
      area->cellBytes = static_cast<std::int32_t>(columnNumber(connection, 1));
      area->storedBytes = columnNumber(connection, 2);
      area->version = columnText(connection, 3);
      area->fault = faultOf(*area);
    }
  });
}

void readFactsOneByOne(Session& session, const AreasOfBlocks& areas) {
  for (const auto& [block, those] : areas) {
    try {
      readFacts(session, fmt::format("= {}", block), areas);
    } catch (const Error& error) {
      if (!isDamage(error)) throw;
      for (StoredArea* area : those) area->fault = fmt::format("its block {} cannot be read ({})", block, error.what());
      session.resumeReading();
    }
  }
}

// Adds what is stored beside the blocks. `which` chooses the rows of areas, to read no more than needed: a column
// behind a blob costs as much to read as the blob.
std::vector<StoredArea> withBlocks(Session& session, std::vector<Placement> placed, const std::string& which) {
  std::vector<StoredArea> areas(placed.size());
  AreasOfBlocks ofBlocks;
  for (std::size_t i = 0; i < placed.size(); ++i) {
    static_cast<Placement&>(areas[i]) = std::move(placed[i]);
    areas[i].fault = fmt::format("its block {} is missing", areas[i].blockId);
    ofBlocks[areas[i].blockId].push_back(&areas[i]);
  }
  try {
    readFacts(session, fmt::format("in (select coefid from Coef_Info where {})", which), ofBlocks);
  } catch (const Error& error) {
    if (!isDamage(error)) throw;
    session.resumeReading();
    readFactsOneByOne(session, ofBlocks);
  }
  return areas;
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

// Nothing if the library answers from another area, or refuses.
std::optional<CellBlock> readByLibrary(Session& session, const StoredArea& area, const Rect& rect) {
  auto record = session.host().makeRecord<tovr::CoefData>();
  record->coeftype = area.type;
  record->screenname = area.screen;
  setRect(*record, rect);
  const int code = queryLibrary(session, *record);
  const std::shared_ptr<unsigned char[]> bytes(record->coefBuffer.data);
  if (code != 0 || record->id != area.id) return std::nullopt;
  return cellsOf(*record, bytes);
}

}  // namespace

void requireFilled(std::size_t bytes, const Rect& rect, std::int32_t cellBytes) {
  if (fills(bytes, rect, cellBytes)) return;
  refuseDamaged("the stored block",
                fmt::format("{} bytes are not the cells of {} with {} bytes each", bytes, toText(rect), cellBytes));
}

std::optional<NumberForm> keptForm(const StoredArea& area) { return splitVersion(area.version, area.cellBytes).form; }

std::vector<Placement> placements(Session& session) { return placementsThat(session, "1"); }

std::vector<StoredArea> storedAreas(Session& session) { return withBlocks(session, placements(session), "1"); }

StoredArea storedArea(Session& session, const Placement& placement) {
  return withBlocks(session, {placement}, fmt::format("id = {}", placement.id)).front();
}

std::optional<StoredArea> findArea(Session& session, std::int64_t id) {
  const auto found = placementsThat(session, fmt::format("i.id = {}", id));
  if (found.empty()) return std::nullopt;
  return storedArea(session, found.front());
}

std::string faultOf(const StoredArea& area) {
  if (!isSound(area.rect)) return fmt::format("no cells can lie in its rectangle {}", toText(area.rect));
  if (area.cellBytes <= 0) return fmt::format("its cells have {} bytes each", area.cellBytes);
  const std::int64_t rowBytes = columnsOf(area.rect) * area.cellBytes;  // the product with the rows may exceed 64 bits
  const std::int64_t room = std::max<std::int64_t>(area.storedBytes - std::int64_t{tovr::kLengthPrefixSize}, 0);
  if (rowsOf(area.rect) <= room / rowBytes) return {};
  return fmt::format("its block is too short: {} bytes for {} x {} cells of {} bytes", room, columnsOf(area.rect),
                     rowsOf(area.rect), area.cellBytes);
}

void requireReadable(const StoredArea& area) {
  if (!area.fault.empty()) refuseDamaged(nameOf(area), area.fault);
}

void requireSound(const Rect& rect, const std::string& whose) {
  if (!isSound(rect)) refuseDamaged(whose, fmt::format("no cells can lie in its rectangle {}", toText(rect)));
}

std::vector<StoredArea> areasOfType(Session& session, std::int32_t type, const std::string& screen) {
  return areasOfType(session, placements(session), type, screen);
}

std::vector<StoredArea> areasOfType(Session& session, const std::vector<Placement>& all, std::int32_t type,
                                    const std::string& screen) {
  std::vector<Placement> chosen;
  std::copy_if(all.begin(), all.end(), std::back_inserter(chosen),
               [&](const Placement& area) { return area.type == type && (screen.empty() || area.screen == screen); });
  if (chosen.empty()) {
    throw libraryError(
        tovr::kNoMatchingArea,
        fmt::format("asked for type {}{}; {}", type, screen.empty() ? "" : " on screen " + screen, storedTypes(all)));
  }
  return withBlocks(session, std::move(chosen), fmt::format("coeftype = {}", type));
}

bool screensShareCells(const std::vector<StoredArea>& areas) {
  std::map<std::int64_t, Rect> rects;  // by screen
  for (const StoredArea& area : areas) {
    const auto [entry, fresh] = rects.emplace(area.screenId, area.rect);
    entry->second = united(entry->second, area.rect);
  }
  std::vector<Rect> around;
  for (const auto& [screen, rect] : rects) around.push_back(rect);
  return overlapsAmong(around, 0).pairs > 0;
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
    throw statusError(tovr::kNoMatchingArea,
                      fmt::format("{} was moved or deleted since it was looked up: look it up again", nameOf(area)));
  }
}

CellBlock readBlock(Session& session, const StoredArea& area) {
  requireReadable(area);
  const auto blob = queryPayload(session, kBlockTable, area.blockId);
  if (!blob) refuseDamaged(nameOf(area), "its block is missing");
  Bytes cells = decipherBlob(session.host().encryption(), *blob);
  requireFilled(cells.size(), area.rect, area.cellBytes);
  return blockOf(area.rect, area.cellBytes, std::move(cells));
}

CellBlock readCells(Session& session, const StoredArea& area, const Rect& rect) {
  requireReadable(area);
  if (auto cells = readByLibrary(session, area, rect)) return *std::move(cells);
  return cut(readBlock(session, area), rect);
}

std::string toText(const Placement& area) { return area.screen + ", " + toText(area.rect); }

}  // namespace tovrdb
