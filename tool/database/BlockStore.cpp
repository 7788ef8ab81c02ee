#include "tool/database/BlockStore.h"

#include <fmt/core.h>

#include "storage/StatusCodes.h"
#include "tool/database/LibraryError.h"
#include "tool/database/NumberForms.h"
#include "tool/database/Screens.h"
#include "tool/database/StoredArea.h"
#include "tool/io/TextList.h"
#include "tool/system/ToolError.h"

namespace tovrtool {
namespace {

std::string namedRect(const std::string& name, const Rect& rect) { return fmt::format("{} ({})", name, toText(rect)); }

// What is there instead of what was asked for; empty where that does not help.
std::string alternatives(Session& session, int code, const AreaName& area) {
  std::vector<std::string> names;
  if (code == tovr::kNoScreenForRectangle || code == tovr::kNoSuchScreenName) {
    for (const StoredScreen& screen : storedScreens(session)) names.push_back(namedRect(screen.name, screen.rect));
    return "; screens: " + shortList(names);
  }
  if (code == tovr::kNoMatchingArea) {
    for (const Placement& stored : placements(session)) {
      if (stored.type == area.type) names.push_back(namedRect(stored.screen, stored.rect));
    }
    return fmt::format("; areas of type {}: {}", area.type, shortList(names));
  }
  return {};
}

void requireArea(Session& session, int code, const AreaName& area) {
  if (code == 0) return;
  session.require(code, fmt::format("asked for {}{}", toText(area.rect), alternatives(session, code, area)));
}

// Throws ToolError where the name does not suit the database's type.
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
    throw libraryError(code, fmt::format("asked for {}; {}", toText(area.rect), insteadOf(area.rect, areas)));
  });
}

}  // namespace tovrtool
