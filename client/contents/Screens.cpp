#include "client/contents/Screens.h"

#include <fmt/core.h>

#include <algorithm>

#include "client/base/Error.h"
#include "client/base/Text.h"
#include "client/contents/ScreenNames.h"
#include "client/session/Damage.h"
#include "client/session/SqlQuery.h"
#include "storage/StatusCodes.h"

namespace tovrdb {
namespace {

auto findScreen(const std::vector<StoredScreen>& screens, const std::string& name) {
  return std::find_if(screens.begin(), screens.end(), [&](const StoredScreen& screen) { return screen.name == name; });
}

Subject subjectOf(const std::string& screen) { return {{}, screen, std::nullopt, std::nullopt}; }

// Objections to a new name beside those of `screens`.
std::vector<Objection> objectionsToName(const std::vector<StoredScreen>& screens, const std::string& name, bool force) {
  if (findScreen(screens, name) != screens.end()) {
    return {
        {kConflict, 0, {}, subjectOf(name), fmt::format("there is a screen '{}' already; give another name", name)}};
  }
  ScreenNames names;
  for (const StoredScreen& screen : screens) names.add(screen.name);
  const std::string doubt = names.doubt(name);
  if (doubt.empty() || force) return {};
  return {{kConflict, 0, {Remedy::kForce}, subjectOf(name), fmt::format("the name '{}' {}", name, doubt)}};
}

void objectToHidden(const std::vector<StoredScreen>& screens, const Rect& rect, std::vector<Objection>& objections) {
  const auto hides = [&](const StoredScreen& screen) { return holds(screen.rect, rect); };
  const auto older = std::find_if(screens.begin(), screens.end(), hides);
  if (older == screens.end()) return;
  objections.push_back({kConflict,
                        0,
                        {Remedy::kForce},
                        subjectOf(older->name),
                        fmt::format("the screen {} ({}) holds all cells of {}; the database finds screens by rectangle "
                                    "and would never look on the new one",
                                    older->name, toText(older->rect), toText(rect))});
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

void addScreen(Session& session, const std::string& name, const Rect& rect, bool force) {
  const auto present = storedScreens(session);
  auto objections = objectionsToName(present, name, force);
  if (session.manager().getDBType() == 0 && !force) objectToHidden(present, rect, objections);
  requireNone(objections, "nothing was added");
  auto screen = session.host().makeRecord<tovr::ScreenInfoData>();
  // A screen belongs to the database entry that was made last.
  screen->dbid = static_cast<std::int32_t>(queryNumber(session.connection(), "select max(id) from Attach_DB_List"));
  screen->screenname = name;
  setRect(*screen, rect);
  session.require(session.manager().insertData(screen.get()));
}

void renameScreen(Session& session, const std::string& name, const std::string& newName, bool force) {
  auto screens = storedScreens(session);
  const StoredScreen renamed = screenNamed(screens, name);
  if (newName == name) throw Error(kInvalid, "the screen is named {} already", name);
  screens.erase(findScreen(screens, name));
  requireNone(objectionsToName(screens, newName, force), "nothing was renamed");
  auto screen = session.host().makeRecord<tovr::ScreenInfoData>();
  screen->id = static_cast<std::int32_t>(renamed.id);
  screen->screenname = newName;
  setRect(*screen, renamed.rect);
  session.require(session.manager().updateData(screen.get()));
}

}  // namespace tovrdb
