#include "tool/database/Screens.h"

#include <fmt/core.h>

#include <algorithm>

#include "storage/StatusCodes.h"
#include "tool/database/Damage.h"
#include "tool/database/LibraryError.h"
#include "tool/database/SqlQuery.h"
#include "tool/io/TextList.h"

namespace tovrtool {
namespace {

auto findScreen(const std::vector<StoredScreen>& screens, const std::string& name) {
  return std::find_if(screens.begin(), screens.end(), [&](const StoredScreen& screen) { return screen.name == name; });
}

}  // namespace

std::vector<StoredScreen> storedScreens(Session& session) {
  const auto all = session.host().makeRecord<tovr::ScreenInfoDataResult>();
  session.require(queryLibrary(session, *all));
  std::vector<StoredScreen> screens;
  for (const auto& screen : all->screens) screens.push_back({screen.id, screen.screenname, rectOf(screen)});
  return screens;
}

const StoredScreen& screenNamed(const std::vector<StoredScreen>& screens, const std::string& name) {
  const auto found = findScreen(screens, name);
  if (found != screens.end()) return *found;
  std::vector<std::string> names;
  for (const StoredScreen& screen : screens) names.push_back(screen.name);
  throw libraryError(tovr::kNoSuchScreenName, fmt::format("asked for {}; screens: {}", name, shortList(names)));
}

void addScreen(Session& session, const std::string& name, const Rect& rect) {
  const auto present = storedScreens(session);
  if (findScreen(present, name) != present.end()) {
    throw ToolError(kConflict, "there is a screen '{}' already; give another name", name);
  }
  auto screen = session.host().makeRecord<tovr::ScreenInfoData>();
  // A screen belongs to the database entry that was made last.
  screen->dbid = static_cast<std::int32_t>(queryNumber(session.connection(), "select max(id) from Attach_DB_List"));
  screen->screenname = name;
  setRect(*screen, rect);
  session.require(session.manager().insertData(screen.get()));
}

}  // namespace tovrtool
