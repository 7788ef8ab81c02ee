#include "client/storing/Removal.h"

#include <fmt/core.h>

#include <algorithm>
#include <iterator>
#include <set>

#include "client/base/Text.h"
#include "client/contents/AreaNames.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

std::string listed(const std::vector<StoredArea>& areas) {
  std::vector<std::string> texts;
  for (const StoredArea& area : areas) texts.push_back(areaText(area));
  return shortList(texts);
}

template <class Predicate>
std::vector<StoredArea> areasThat(Session& session, const Predicate& qualify) {
  const auto all = storedAreas(session);
  std::vector<StoredArea> areas;
  std::copy_if(all.begin(), all.end(), std::back_inserter(areas), qualify);
  return areas;
}

std::vector<StoredData> dataThat(Session& session, const std::string& member, const std::string& value) {
  std::vector<StoredData> found;
  for (const StoredData& data : storedData(session)) {
    if ((member == "type" ? data.type : data.screen) == value) found.push_back(data);
  }
  return found;
}

void requireSame(bool same, const std::string& what) {
  if (!same) throw Error(kBusy, "another program changed {} meanwhile; nothing was deleted: try again", what);
}

void requireUnchanged(Session& session, const Removal& removal) {
  std::set<std::pair<std::int64_t, std::string>> present;
  for (const StoredArea& area : storedAreas(session)) present.emplace(area.id, area.changed);
  for (const StoredArea& area : removal.areas) requireSame(present.count({area.id, area.changed}) == 1, areaText(area));
}

}  // namespace

Removal areasOfIds(Session& session, const std::vector<IdRange>& ids) {
  Removal removal;
  removal.areas = areasWithIds(session, ids);
  return removal;
}

Removal areasOf(Session& session, const AreaFilter& filter) {
  Removal removal;
  removal.areas = areasThatPass(session, filter);
  if (!removal.areas.empty()) return removal;
  throw statusError(tovr::kNoMatchingArea, "no such area is stored").suggest(Remedy::kListAreas);
}

Removal areaAt(Session& session, const AreaName& place) {
  requireSuits(place, session.manager().getDBType());
  const auto ofType = areasThat(session, [&](const StoredArea& area) {
    return area.type == place.type && (place.screen.empty() || area.screen == place.screen);
  });
  std::vector<StoredArea> areas;
  std::copy_if(ofType.begin(), ofType.end(), std::back_inserter(areas),
               [&](const StoredArea& area) { return area.rect == place.rect; });
  if (areas.size() > 1) {
    throw Error(kInvalid, "{} areas are there: {}", areas.size(), listed(areas)).suggest(Remedy::kGiveAreaIds);
  }
  if (areas.empty()) {
    throw libraryError(tovr::kNoMatchingArea,
                       fmt::format("asked for {}; areas of type {}: {}", placeText(place), place.type, listed(ofType)));
  }
  Removal removal;
  removal.areas = std::move(areas);
  return removal;
}

Removal screenOf(Session& session, const std::string& name, bool withAreas) {
  Removal removal;
  removal.screen = screenNamed(storedScreens(session), name);
  const auto data = dataThat(session, "screen", name);
  if (!data.empty()) {
    std::vector<std::string> texts;
    for (const StoredData& each : data) texts.push_back(dataText(each));
    throw Error(kConflict,
                "data belongs to the screen {}: {}. It came there because data is filed under the screen that was "
                "added last, whichever that is",
                name, shortList(texts, "; "))
        .suggest(Remedy::kMoveData);
  }
  removal.areas = areasThat(session, [&](const StoredArea& area) { return area.screenId == removal.screen->id; });
  if (!removal.areas.empty() && !withAreas) {
    throw Error(kConflict, "the screen {} has areas: {}", name, listed(removal.areas)).suggest(Remedy::kWithAreas);
  }
  if (removal.screen->id == lastScreenKey(session)) {
    removal.note =
        "note: it was the screen that was added last, under which programs file generic data: until another screen is "
        "added, hosts cannot store data in this file (code 19)";
  }
  return removal;
}

Removal dataOfType(Session& session, std::int32_t type) {
  Removal removal;
  removal.data = dataThat(session, "type", std::to_string(type));
  if (removal.data.empty()) throw libraryError(tovr::kNoData).suggest(Remedy::kListData);
  return removal;
}

std::vector<std::string> toTexts(const Removal& removal) {
  std::vector<std::string> texts;
  if (removal.screen)
    texts.push_back(fmt::format("screen {} ({})", removal.screen->name, toText(removal.screen->rect)));
  for (const StoredArea& area : removal.areas) texts.push_back(fmt::format("{}, {}", areaText(area), blockText(area)));
  for (const StoredData& data : removal.data) {
    texts.push_back("data of " + dataText(data));
  }
  return texts;
}

ChangePlan planRemoval(Session& session, const Removal& removal) {
  requireUnchanged(session, removal);
  ChangePlan plan;
  if (!removal.areas.empty()) plan.changes.emplace_back(DeleteAreas{removal.areas});
  for (const StoredData& data : removal.data) plan.changes.emplace_back(DeleteData{data});
  if (removal.screen) plan.changes.emplace_back(DeleteScreen{*removal.screen});
  return plan;
}

}  // namespace tovrdb
