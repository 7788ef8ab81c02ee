#include "client/reading/AreaLookup.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

#include "client/base/Text.h"
#include "client/contents/AreaNames.h"
#include "client/reading/Mosaic.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

// The screen on which the library looks; null if there is none.
const StoredScreen* screenFor(const AreaName& asked, int databaseType, const std::vector<StoredScreen>& screens) {
  const auto found = std::find_if(screens.begin(), screens.end(), [&](const StoredScreen& screen) {
    return databaseType == 1 ? screen.name == asked.screen : holds(screen.rect, asked.rect);
  });
  return found != screens.end() ? &*found : nullptr;
}

std::string screenList(const std::vector<StoredScreen>& screens) {
  std::vector<std::string> names;
  for (const StoredScreen& screen : screens) names.push_back(fmt::format("{} ({})", screen.name, toText(screen.rect)));
  return "screens: " + shortList(names);
}

// What there is if no screen holds the rectangle.
Alternatives alternativesToScreen(const Rect& rect, const std::vector<StoredScreen>& screens,
                                  const std::vector<StoredArea>& areas) {
  const std::string text = screenList(screens);
  if (!areasMeeting(areas, rect).empty()) {
    Alternatives alternatives = alternativesTo(rect, areas);
    return {text + "; " + alternatives.text, std::move(alternatives.remedies)};
  }
  const auto screen = std::find_if(screens.begin(), screens.end(),
                                   [&](const StoredScreen& each) { return common(each.rect, rect).has_value(); });
  if (screen == screens.end()) return {text, {}};
  return {text + "; it reaches " + outsideText(rect, screen->rect, "the screen " + screen->name), {}};
}

// Whether the rectangle can be read across these areas.
bool readsAcross(const std::vector<StoredArea>& areas, const Rect& rect) {
  const auto fits = [&](const StoredArea& area) {
    return area.fault.empty() && area.cellBytes == areas.front().cellBytes;
  };
  if (!fitsBlock(rect, areas.front().cellBytes) || !std::all_of(areas.begin(), areas.end(), fits)) return false;
  return areasShowing(areas, rect).complete;
}

// The area that holds most of the rectangle. REQUIRES: each has cells in it.
const StoredArea& nearest(const std::vector<StoredArea>& areas, const Rect& rect) {
  const auto cells = [&](const StoredArea& area) {
    const Rect part = *common(area.rect, rect);
    return static_cast<double>(columnsOf(part)) * static_cast<double>(rowsOf(part));
  };
  return *std::max_element(areas.begin(), areas.end(),
                           [&](const StoredArea& one, const StoredArea& other) { return cells(one) < cells(other); });
}

Error refusal(int status, const Rect& rect, const Alternatives& alternatives) {
  Error error = libraryError(status, fmt::format("asked for {}; {}", toText(rect), alternatives.text));
  for (const Remedy remedy : alternatives.remedies) error.suggest(remedy);
  return error;
}

}  // namespace

bool libraryFinds(int databaseType, std::string_view screen) {
  return (databaseType == 0 && screen.empty()) || (databaseType == 1 && !screen.empty());
}

StoredArea answeringArea(Session& session, const AreaName& asked) {
  const int databaseType = session.manager().getDBType();
  const auto screens = storedScreens(session);
  const StoredScreen* const screen = screenFor(asked, databaseType, screens);
  if (screen == nullptr && databaseType == 1) throw noAnswer(asked, databaseType, screens, {});
  const auto areas = placements(session);
  const auto first = std::find_if(areas.begin(), areas.end(), [&](const Placement& area) {
    return screen != nullptr && area.screenId == screen->id && area.type == asked.type && holds(area.rect, asked.rect);
  });
  if (first != areas.end()) return storedArea(session, *first);
  throw noAnswer(asked, databaseType, screens, areasOfType(session, areas, asked.type, asked.screen));
}

Error noAnswer(const AreaName& asked, int databaseType, const std::vector<StoredScreen>& screens,
               const std::vector<StoredArea>& areas) {
  if (screenFor(asked, databaseType, screens) != nullptr) return noMatchingArea(asked.rect, areas);
  if (databaseType == 1) return refusal(tovr::kNoSuchScreenName, asked.rect, {screenList(screens), {}});
  return refusal(tovr::kNoScreenForRectangle, asked.rect, alternativesToScreen(asked.rect, screens, areas));
}

Error noMatchingArea(const Rect& rect, const std::vector<StoredArea>& areas) {
  return refusal(tovr::kNoMatchingArea, rect, alternativesTo(rect, areas));
}

Alternatives alternativesTo(const Rect& rect, const std::vector<StoredArea>& areas) {
  const std::vector<StoredArea> meeting = areasMeeting(areas, rect);
  if (meeting.empty()) return {"areas of the type: " + listText(areas), {}};
  std::vector<std::string> texts;
  for (const StoredArea& area : meeting) texts.push_back(fmt::format("{} ({})", area.id, toText(area.rect)));
  const std::string text = "areas that overlap it: " + shortList(texts);
  if (readsAcross(meeting, rect)) return {text, {Remedy::kReadAcross}};
  const StoredArea& area = nearest(meeting, rect);
  const std::string outside = outsideText(rect, area.rect, fmt::format("area {}", area.id));
  return {outside.empty() ? text : text + "; it reaches " + outside, {}};
}

}  // namespace tovrdb
