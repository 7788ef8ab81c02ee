#include "client/storing/Additions.h"

#include <fmt/core.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "client/base/Error.h"

namespace tovrdb {
namespace {

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
                                    "and would never find the new one",
                                    older->name, toText(older->rect), toText(rect))});
}

}  // namespace

ChangePlan planNewScreen(Session& session, const std::string& name, const Rect& rect, bool force) {
  const auto present = storedScreens(session);
  auto objections = objectionsToName(present, name, force);
  if (session.manager().getDBType() == 0 && !force) objectToHidden(present, rect, objections);
  requireNone(objections, "nothing was added");
  // A screen belongs to the database entry that was made last.
  const std::int64_t database = queryNumber(session.connection(), "select max(id) from Attach_DB_List");
  return {{AddScreen{database, name, rect}}, {}};
}

ChangePlan planScreenName(Session& session, const std::string& name, const std::string& newName, bool force) {
  auto screens = storedScreens(session);
  const StoredScreen renamed = screenNamed(screens, name);
  if (newName == name) throw Error(kInvalid, "the screen is named {} already", name);
  screens.erase(findScreen(screens, name));
  requireNone(objectionsToName(screens, newName, force), "nothing was renamed");
  return {{RenameScreen{renamed, newName}}, {}};
}

ChangePlan planData(Session& session, std::int32_t type, const std::string& version, Bytes payload) {
  const std::vector<StoredScreen> screens = storedScreens(session);
  if (screens.empty()) {
    throw Error(kRefused, "data belongs to a screen, and the file has none").suggest(Remedy::kAddScreen);
  }
  ChangePlan plan;
  for (const StoredData& data : storedData(session)) {
    if (data.type == std::to_string(type)) plan.notices.push_back("replaced the data of " + dataText(data));
  }
  std::int64_t screen = lastScreenKey(session);
  const auto isLast = [&](const StoredScreen& each) { return each.id == screen; };
  if (std::none_of(screens.begin(), screens.end(), isLast)) {
    plan.notices.push_back(fmt::format(
        "note: the screen that was added last is deleted; the data belongs to the screen {}", screens.back().name));
    screen = screens.back().id;
  }
  plan.changes.emplace_back(PutData{type, version, std::move(payload), screen});
  return plan;
}

ChangePlan planMeasurement(std::int32_t type, const Rect& rect, const std::string& version, Bytes payload) {
  ChangePlan plan;
  plan.changes.emplace_back(AddMeasurement{type, rect, version, std::move(payload)});
  return plan;
}

}  // namespace tovrdb
