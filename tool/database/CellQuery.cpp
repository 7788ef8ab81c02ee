#include "tool/database/CellQuery.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "tool/cells/CellNumbers.h"
#include "tool/database/BlockStore.h"
#include "tool/database/Mosaic.h"
#include "tool/database/NumberForms.h"
#include "tool/database/Screens.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

CellAnswer answerOf(CellBlock cells, const StoredArea& area, const FormOptions& form) {
  return {std::move(cells), {area}, formOf({area}, form), false, 0};
}

CellAnswer findById(Session& session, const CellQuery& query) {
  const auto areas = storedAreas(session);
  const auto area =
      std::find_if(areas.begin(), areas.end(), [&](const StoredArea& each) { return each.id == *query.areaId; });
  if (area == areas.end()) throw ToolError(kRefused, "there is no area {}; tovrdb coef list shows them", *query.areaId);
  requireSound(area->rect, fmt::format("area {}", area->id));
  const Rect rect = query.rect.value_or(area->rect);
  if (!holds(area->rect, rect)) {
    throw ToolError(kRefused, "the rectangle {} leaves area {} ({})", toText(rect), area->id, toText(area->rect));
  }
  return answerOf(readCells(session, *area, rect), *area, query.form);
}

// Rectangles on different screens of a file that finds them by name have nothing to do with one another.
void requireOneScreen(Session& session, const std::vector<StoredArea>& areas) {
  if (session.manager().getDBType() != 1) return;
  const auto other = std::find_if(areas.begin(), areas.end(),
                                  [&](const StoredArea& area) { return area.screenId != areas.front().screenId; });
  if (other == areas.end()) return;
  throw ToolError(kUsage,
                  "there are areas of the type on several screens, among them {} and {}: say which with --screen",
                  areas.front().screen, other->screen);
}

CellAnswer findMosaic(Session& session, const CellQuery& query, const std::vector<StoredArea>& areas,
                      const Rect& rect) {
  const auto meeting = areasMeeting(areas, rect);
  Bytes fill;
  if (query.fill && !meeting.empty()) {
    const NumberForm form = requireForm(meeting, query.form);
    fill = cellOf(form.dtype, valuesPerCell(meeting.front().cellBytes, form.dtype), *query.fill);
  }
  Mosaic mosaic = readMosaic(session, areas, rect, fill);
  const auto form = formOf(mosaic.areas, query.form);
  return {std::move(mosaic.cells), std::move(mosaic.areas), form, mosaic.overlapping, mosaic.filled};
}

Rect unitedRect(const std::vector<StoredArea>& areas) {
  Rect rect = areas.front().rect;
  for (const StoredArea& area : areas) rect = united(rect, area.rect);
  return rect;
}

// The library's own way of finding leaves the screen to it in files of type 0, and takes its name in those of type 1.
bool libraryFinds(Session& session, const CellQuery& query) {
  const int type = session.manager().getDBType();
  return (type == 0 && query.screen.empty()) || (type == 1 && !query.screen.empty());
}

}  // namespace

CellAnswer findCells(Session& session, const CellQuery& query) {
  if (query.areaId) return findById(session, query);
  if (!query.type) throw ToolError(kUsage, "--type or --area is required");
  if (query.rect && libraryFinds(session, query)) {
    const auto area = answeringArea(session, *query.type, query.screen, *query.rect);
    if (area || !query.mosaic) {
      CellBlock cells = fetchBlock(session, {*query.type, query.screen, *query.rect});
      if (!area) throw ToolError(kRefused, "the file changed while it was read: try again");
      return answerOf(std::move(cells), *area, query.form);
    }
  }
  if (!query.screen.empty()) screenNamed(storedScreens(session), query.screen);
  const auto areas = areasOfType(session, *query.type, query.screen);
  requireOneScreen(session, areas);
  const Rect rect = query.rect.value_or(unitedRect(areas));
  const auto whole =
      std::find_if(areas.begin(), areas.end(), [&](const StoredArea& area) { return holds(area.rect, rect); });
  if (query.mosaic && whole == areas.end()) return findMosaic(session, query, areas, rect);
  const StoredArea& area = query.mosaic ? *whole : chooseArea(areas, query.rect);
  return answerOf(readCells(session, area, query.rect.value_or(area.rect)), area, query.form);
}

}  // namespace tovrtool
