#include "client/reading/BlockStore.h"

#include <fmt/core.h>

#include <algorithm>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/contents/Screens.h"
#include "client/contents/StoredArea.h"
#include "client/reading/Mosaic.h"
#include "client/reading/NumberForms.h"
#include "client/session/LibraryError.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

std::string screenList(const std::vector<StoredScreen>& screens) {
  std::vector<std::string> names;
  for (const StoredScreen& screen : screens) names.push_back(fmt::format("{} ({})", screen.name, toText(screen.rect)));
  return "screens: " + shortList(names);
}

// Why no screen holds the rectangle, and what helps.
Alternatives alternativesToScreen(Session& session, const AreaName& area) {
  const std::vector<StoredScreen> screens = storedScreens(session);
  std::string text = screenList(screens);
  const auto areas = areasOfType(session, area.type, "");
  if (!areasMeeting(areas, area.rect).empty()) {
    Alternatives alternatives = alternativesTo(area.rect, areas);
    alternatives.text = text + "; " + alternatives.text;
    return alternatives;
  }
  const auto screen = std::find_if(screens.begin(), screens.end(),
                                   [&](const StoredScreen& each) { return common(each.rect, area.rect).has_value(); });
  if (screen == screens.end()) return {text, {}};
  return {text + "; it reaches " + outsideText(area.rect, screen->rect, "the screen " + screen->name), {}};
}

// What is there instead of what was asked for; empty if that does not help.
Alternatives alternatives(Session& session, int code, const AreaName& area) {
  if (code == tovr::kNoSuchScreenName) return {screenList(storedScreens(session)), {}};
  if (code == tovr::kNoScreenForRectangle) return alternativesToScreen(session, area);
  return {};
}

void requireArea(Session& session, int code, const AreaName& area) {
  if (code == 0) return;
  throw withAlternatives(code, area.rect, alternatives(session, code, area));
}

// Throws Error where the name does not suit the database's type.
std::unique_ptr<tovr::CoefData> recordOf(Session& session, const AreaName& area) {
  requireSuits(area, session.manager().getDBType());
  auto record = session.host().makeRecord<tovr::CoefData>();
  record->coeftype = area.type;
  record->screenname = area.screen;
  setRect(*record, area.rect);
  return record;
}

}  // namespace

CellBlock fetchBlock(Session& session, const AreaName& area) {
  const auto record = recordOf(session, area);
  return queryCells(session, *record, [&](int code) {
    if (code != tovr::kNoMatchingArea) return requireArea(session, code, area);
    std::vector<StoredArea> areas = areasOfType(session, area.type, area.screen);
    throw noMatchingArea(area.rect, areas);
  });
}

}  // namespace tovrdb
