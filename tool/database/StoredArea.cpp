#include "tool/database/StoredArea.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <utility>

#include "host/StatusText.h"
#include "storage/StatusCodes.h"
#include "tool/database/SqlQuery.h"
#include "tool/database/StoredBlob.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

constexpr std::size_t kMostNamed = 8;  // areas that an error text lists

std::int64_t number(const std::string& text) { return std::strtoll(text.c_str(), nullptr, 10); }

// Four columns of a row from `at` on: left, top, right, bottom.
Rect rectIn(const Row& row, std::size_t at, const std::string& whose) {
  std::int32_t edges[4];
  for (std::size_t i = 0; i < 4; ++i) {
    const std::int64_t edge = number(row[at + i]);
    if (edge < 0 || edge > std::numeric_limits<std::int32_t>::max()) {
      throw ToolError(kFileProblem, whose + " has the edge " + row[at + i] + ", which is no cell: the file is damaged");
    }
    edges[i] = static_cast<std::int32_t>(edge);
  }
  const Rect rect{edges[0], edges[1], edges[2], edges[3]};
  if (rect.columns() < 1 || rect.rows() < 1) {
    throw ToolError(kFileProblem, whose + " has the rectangle " + toText(rect) + ", which is inverted");
  }
  return rect;
}

std::string listed(const std::vector<StoredArea>& areas) {
  std::string text;
  for (std::size_t i = 0; i < areas.size() && i < kMostNamed; ++i) text += (i == 0 ? "" : "; ") + toText(areas[i]);
  if (areas.size() > kMostNamed) text += " and " + std::to_string(areas.size() - kMostNamed) + " more";
  return text;
}

std::string storedTypes(const std::vector<StoredArea>& areas) {
  std::vector<std::int32_t> types;
  for (const StoredArea& area : areas) types.push_back(area.type);
  std::sort(types.begin(), types.end());
  types.erase(std::unique(types.begin(), types.end()), types.end());
  std::string text;
  for (const std::int32_t type : types) text += (text.empty() ? "" : ", ") + std::to_string(type);
  return types.empty() ? "the file holds no areas; tovrdb coef put stores them" : "there are areas of type " + text;
}

Cells checked(const Rect& rect, std::int32_t cellBytes, std::shared_ptr<const unsigned char> bytes, std::size_t size) {
  const std::int64_t rowBytes = rect.columns() * cellBytes;  // below 2^62
  const auto present = static_cast<std::int64_t>(size);
  const bool fits = rowBytes > 0 && present % rowBytes == 0 && present / rowBytes == rect.rows();
  if (!fits) {
    throw ToolError(kRefused, "the stored block is damaged: " + std::to_string(size) + " bytes are not the cells of " +
                                  toText(rect) + " with " + std::to_string(cellBytes) + " bytes each");
  }
  return {rect, cellBytes, std::move(bytes)};
}

// Whether the library, asked for the rectangle, answers from this very area and not from one that was stored before.
bool answersFrom(Session& session, const StoredArea& area, const Rect& rect) {
  const int databaseType = session.manager().getDBType();
  if (databaseType > 1) return false;  // the library does not know how to look
  const bool byName = databaseType == 1;
  const auto screens = storedScreens(session);
  const auto screen = std::find_if(screens.begin(), screens.end(), [&](const StoredScreen& candidate) {
    return byName ? candidate.name == area.screen : candidate.rect.holds(rect);
  });
  if (screen == screens.end() || screen->id != area.screenId) return false;
  const auto areas = storedAreas(session);
  const auto first = std::find_if(areas.begin(), areas.end(), [&](const StoredArea& candidate) {
    return candidate.screenId == area.screenId && candidate.type == area.type && candidate.rect.holds(rect);
  });
  return first != areas.end() && first->id == area.id;
}

Cells readByManager(Session& session, const StoredArea& area, const Rect& rect) {
  auto record = session.host().makeRecord<tovr::CoefData>();
  record->coeftype = area.type;
  record->screenname = area.screen;
  setRect(*record, rect);
  const int code = session.manager().queryData(record.get());
  const std::shared_ptr<unsigned char> bytes(record->coefBuffer.data, std::default_delete<unsigned char[]>());
  session.require(code, toText(area));
  return checked(rect, record->coefBuffer.databitwidth, bytes,
                 static_cast<std::size_t>(std::max(record->coefBuffer.datasize, 0)));
}

// The whole block of an area that the library does not answer from.
Cells readByKey(Session& session, const StoredArea& area) {
  const auto blob = queryBlob(session.connection(), "select data from Coef where id = " + std::to_string(area.blockId));
  if (!blob) throw ToolError(kRefused, "block " + std::to_string(area.blockId) + " of " + toText(area) + " is missing");
  const auto plain =
      std::make_shared<const std::vector<unsigned char>>(decipherBlob(session.host().encryption(), *blob));
  return checked(area.rect, area.cellBytes, {plain, plain->data()}, plain->size());
}

Cells cut(const Cells& whole, const Rect& rect) {
  if (rect.columns() == whole.rect.columns() && rect.rows() == whole.rect.rows()) return whole;
  auto part = std::make_shared<std::vector<unsigned char>>();
  const std::int64_t skipped = (std::int64_t{rect.left} - whole.rect.left) * whole.cellBytes;
  for (std::int64_t y = rect.top; y <= rect.bottom; ++y) {
    const unsigned char* first = whole.row(static_cast<std::int32_t>(y)) + skipped;
    part->insert(part->end(), first, first + rect.columns() * whole.cellBytes);
  }
  return {rect, whole.cellBytes, {part, part->data()}};
}

}  // namespace

std::vector<StoredArea> storedAreas(Session& session) {
  std::vector<StoredArea> areas;
  for (const Row& row : queryRows(session.connection(),
                                  "select i.id, i.screenid, s.screenname, i.coeftype, i.areaid, i.coefid,"
                                  " c.databitwidth, i.left, i.top, i.right, i.bottom from Coef_Info i"
                                  " left join Screen_Info s on s.id = i.screenid"
                                  " left join Coef c on c.id = i.coefid order by i.id")) {
    areas.push_back({number(row[0]), number(row[1]), row[2], static_cast<std::int32_t>(number(row[3])), number(row[4]),
                     rectIn(row, 7, "area " + row[0]), number(row[5]), static_cast<std::int32_t>(number(row[6]))});
  }
  return areas;
}

std::vector<StoredScreen> storedScreens(Session& session) {
  std::vector<StoredScreen> screens;
  for (const Row& row : queryRows(session.connection(),
                                  "select id, screenname, left, top, right, bottom from Screen_Info order by id")) {
    screens.push_back({number(row[0]), row[1], rectIn(row, 2, "screen " + row[1])});
  }
  return screens;
}

std::vector<StoredArea> areasOfType(Session& session, std::int32_t type, const std::string& screen) {
  const std::vector<StoredArea> all = storedAreas(session);
  std::vector<StoredArea> areas;
  std::copy_if(all.begin(), all.end(), std::back_inserter(areas),
               [&](const StoredArea& area) { return area.type == type && (screen.empty() || area.screen == screen); });
  if (areas.empty()) {
    throw ToolError(kRefused, std::to_string(tovr::kNoMatchingArea) + ": " +
                                  tovrhost::statusText(tovr::kNoMatchingArea) + "; asked for type " +
                                  std::to_string(type) + (screen.empty() ? "" : " of the screen " + screen) + "; " +
                                  storedTypes(all));
  }
  return areas;
}

const StoredArea& chooseArea(const std::vector<StoredArea>& areas, const std::optional<Rect>& rect) {
  if (!rect) {
    if (areas.size() == 1) return areas.front();
    throw ToolError(kUsage, "there are several areas, say which with --rect (and --screen): " + listed(areas));
  }
  const auto found =
      std::find_if(areas.begin(), areas.end(), [&](const StoredArea& area) { return area.rect.holds(*rect); });
  if (found != areas.end()) return *found;
  throw ToolError(kRefused, std::to_string(tovr::kNoMatchingArea) + ": " + tovrhost::statusText(tovr::kNoMatchingArea) +
                                "; asked for " + toText(*rect) + "; there are " + listed(areas));
}

Cells readCells(Session& session, const StoredArea& area, const Rect& rect) {
  if (answersFrom(session, area, rect)) return readByManager(session, area, rect);
  return cut(readByKey(session, area), rect);
}

std::string toText(const StoredArea& area) { return area.screen + ", " + toText(area.rect); }

}  // namespace tovrtool
