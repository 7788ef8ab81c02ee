#include "client/reading/CellQuery.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "client/base/Error.h"
#include "client/cells/CellNumbers.h"
#include "client/contents/AreaNames.h"
#include "client/contents/Screens.h"
#include "client/reading/AreaLookup.h"
#include "client/reading/NumberForms.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

CellSource sourceOfId(Session& session, const CellQuery& query) {
  const auto area = findArea(session, *query.areaId);
  if (!area) {
    throw statusError(tovr::kNoMatchingArea, fmt::format("there is no area {}", *query.areaId))
        .suggest(Remedy::kListAreas);
  }
  requireReadable(*area);
  const Rect rect = query.rect.value_or(area->rect);
  if (!holds(area->rect, rect)) {
    throw Error(kRefused, "the rectangle {} reaches {}", toText(rect),
                outsideText(rect, area->rect, fmt::format("area {}", area->id)));
  }
  return {{*area}, rect, false, false};
}

// Without a rectangle the only area, else the first that holds it.
CellSource sourceOfOne(const std::vector<StoredArea>& areas, const std::optional<Rect>& rect) {
  if (!rect && areas.size() > 1) {
    throw Error(kInvalid, "ambiguous: {} areas: {}", areas.size(), listText(areas)).suggest(Remedy::kGiveRectOrScreen);
  }
  const auto found = std::find_if(areas.begin(), areas.end(),
                                  [&](const StoredArea& area) { return !rect || holds(area.rect, *rect); });
  if (found == areas.end()) throw noMatchingArea(*rect, areas);
  requireReadable(*found);
  return {{*found}, rect.value_or(found->rect), false, false};
}

// If screens are found by name, each has cells of its own: rectangles on different ones are unrelated.
void requireOneScreen(Session& session, const std::vector<StoredArea>& areas) {
  if (session.manager().getDBType() != 1) return;
  const auto other = std::find_if(areas.begin(), areas.end(),
                                  [&](const StoredArea& area) { return area.screenId != areas.front().screenId; });
  if (other == areas.end()) return;
  throw Error(kInvalid, "several screens have areas of the type, among them {} and {}", areas.front().screen,
              other->screen)
      .suggest(Remedy::kGiveScreen);
}

// The stored form of a cell that no area covers; empty if the query gives none.
Bytes fillOf(const CellQuery& query, const CellSource& source) {
  if (!query.fill || !source.mosaic || source.areas.empty()) return {};
  const NumberForm form = requireForm(source.areas, query.form);
  return cellOf(form.dtype, valuesPerCell(source.areas.front().cellBytes, form.dtype), *query.fill);
}

// Throws Error if one of them has a fault: its rectangle cannot be trusted.
Rect unitedRect(const std::vector<StoredArea>& areas) {
  for (const StoredArea& area : areas) requireReadable(area);
  Rect rect = areas.front().rect;
  for (const StoredArea& area : areas) rect = united(rect, area.rect);
  return rect;
}

CellSource sourceOfAll(const std::vector<StoredArea>& areas, const std::optional<Rect>& asked) {
  const Rect rect = asked ? *asked : unitedRect(areas);
  requireBlockSize(rect, 1);
  ShowingAreas showing = areasShowing(areas, rect);
  for (const StoredArea& area : showing.areas) requireReadable(area);
  const bool whole = showing.complete && showing.areas.size() == 1;
  return {std::move(showing.areas), rect, !whole, showing.overlapping};
}

}  // namespace

CellSource locateCells(Session& session, const CellQuery& query) {
  if (query.areaId) return sourceOfId(session, query);
  if (!query.type) throw Error(kInvalid, "neither a type nor an area was given").suggest(Remedy::kGiveTypeOrArea);
  if (query.rect && !query.mosaic && libraryFinds(session.manager().getDBType(), query.screen)) {
    const StoredArea area = answeringArea(session, {*query.type, query.screen, *query.rect});
    requireReadable(area);
    return {{area}, *query.rect, false, false};
  }
  if (!query.screen.empty()) screenNamed(storedScreens(session), query.screen);
  const auto areas = areasOfType(session, *query.type, query.screen);
  requireOneScreen(session, areas);
  return query.mosaic ? sourceOfAll(areas, query.rect) : sourceOfOne(areas, query.rect);
}

Mosaic readLocated(Session& session, const CellSource& source, const Rect& part, const Bytes& fill) {
  if (source.mosaic) return readMosaic(session, source.areas, part, fill);
  return {readCells(session, source.areas.front(), part), source.areas, source.overlapping, 0};
}

CellAnswer findCells(Session& session, const CellQuery& query) {
  const CellSource source = locateCells(session, query);
  Mosaic mosaic = readLocated(session, source, source.rect, fillOf(query, source));
  const auto form = formOf(mosaic.areas, query.form);
  return {std::move(mosaic.cells), std::move(mosaic.areas), form, source.overlapping, mosaic.filled};
}

}  // namespace tovrdb
