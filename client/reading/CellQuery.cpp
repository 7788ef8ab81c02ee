#include "client/reading/CellQuery.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "client/base/Error.h"
#include "client/cells/CellNumbers.h"
#include "client/contents/AreaWords.h"
#include "client/contents/Screens.h"
#include "client/reading/BlockStore.h"
#include "client/reading/Mosaic.h"
#include "client/reading/NumberForms.h"
#include "client/session/LibraryError.h"
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

// The one that is meant: without a rectangle the only one, else the first that holds it.
CellSource sourceOfOne(const std::vector<StoredArea>& areas, const std::optional<Rect>& rect) {
  if (!rect && areas.size() > 1) {
    throw Error(kInvalid, "ambiguous: {} areas: {}", areas.size(), listText(areas)).suggest(Remedy::kGiveRectOrScreen);
  }
  const auto found = std::find_if(areas.begin(), areas.end(),
                                  [&](const StoredArea& area) { return !rect || holds(area.rect, *rect); });
  if (found == areas.end()) {
    throw noMatchingArea(*rect, areas);
  }
  requireReadable(*found);
  return {{*found}, rect.value_or(found->rect), false, false};
}

// Rectangles on different screens of a file that finds them by name have nothing to do with one another.
void requireOneScreen(Session& session, const std::vector<StoredArea>& areas) {
  if (session.manager().getDBType() != 1) return;
  const auto other = std::find_if(areas.begin(), areas.end(),
                                  [&](const StoredArea& area) { return area.screenId != areas.front().screenId; });
  if (other == areas.end()) return;
  throw Error(kInvalid, "several screens have areas of the type, among them {} and {}", areas.front().screen,
              other->screen)
      .suggest(Remedy::kGiveScreen);
}

CellAnswer readMosaicOf(Session& session, const CellQuery& query, const CellSource& source) {
  Bytes fill;
  if (query.fill && !source.areas.empty()) {
    const NumberForm form = requireForm(source.areas, query.form);
    fill = cellOf(form.dtype, valuesPerCell(source.areas.front().cellBytes, form.dtype), *query.fill);
  }
  Mosaic mosaic = readMosaic(session, source.areas, source.rect, fill);
  const auto form = formOf(mosaic.areas, query.form);
  return {std::move(mosaic.cells), std::move(mosaic.areas), form, source.overlapping, mosaic.filled};
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

// The library's own way of finding leaves the screen to it in files of type 0, and takes its name in those of type 1.
bool libraryFinds(Session& session, const CellQuery& query) {
  const int type = session.manager().getDBType();
  return (type == 0 && query.screen.empty()) || (type == 1 && !query.screen.empty());
}

}  // namespace

CellSource locateCells(Session& session, const CellQuery& query) {
  if (query.areaId) return sourceOfId(session, query);
  if (!query.type) throw Error(kInvalid, "neither a type nor an area was given").suggest(Remedy::kGiveTypeOrArea);
  if (query.rect && !query.mosaic && libraryFinds(session, query)) {
    if (const auto area = answeringArea(session, *query.type, query.screen, *query.rect)) {
      requireReadable(*area);
      return {{*area}, *query.rect, false, false};
    }
    fetchBlock(session, {*query.type, query.screen, *query.rect});  // tells why not
    throw Error(kBusy, "another program changed the file while it was read: try again");
  }
  if (!query.screen.empty()) screenNamed(storedScreens(session), query.screen);
  const auto areas = areasOfType(session, *query.type, query.screen);
  requireOneScreen(session, areas);
  return query.mosaic ? sourceOfAll(areas, query.rect) : sourceOfOne(areas, query.rect);
}

CellAnswer findCells(Session& session, const CellQuery& query) {
  const CellSource source = locateCells(session, query);
  if (source.mosaic) return readMosaicOf(session, query, source);
  return {readCells(session, source.areas.front(), source.rect), source.areas, formOf(source.areas, query.form),
          source.overlapping, 0};
}

}  // namespace tovrdb
