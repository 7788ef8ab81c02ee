#include "tool/database/StoreWords.h"

#include <fmt/core.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "tool/database/AreaWords.h"

namespace tovrtool {
namespace {

std::string remediesText(const std::vector<Objection>& objections) {
  const auto any = [&](bool Remedies::*remedy) {
    return std::any_of(objections.begin(), objections.end(),
                       [&](const Objection& objection) { return objection.remedies.*remedy; });
  };
  std::string text;
  if (any(&Remedies::patch)) text += "; --patch puts the cells into the stored block";
  if (any(&Remedies::replace)) text += "; --replace removes areas that lie wholly inside";
  if (any(&Remedies::beside)) text += "; --beside stores in addition";
  if (any(&Remedies::force)) text += "; --force stores it all the same";
  return text;
}

ExitCode codeOf(const std::vector<Objection>& objections) {
  const bool conflicts = std::all_of(objections.begin(), objections.end(),
                                     [](const Objection& objection) { return objection.code == kConflict; });
  return conflicts ? kConflict : kRefused;
}

// What another host wrote beside the cells and a new block does not have.
std::string lostText(const StoredArea& area) {
  std::string text;
  if (area.number != BlockText().number) text += fmt::format("; its area number {} went with it", area.number);
  if (!area.layerList.empty()) text += "; its list of layers went with it";
  return text;
}

}  // namespace

void requireNoObjections(const StorePlan& plan) {
  const auto& objections = plan.objections;
  if (objections.empty()) return;
  const std::string end = "nothing was stored" + remediesText(objections);
  if (objections.size() == 1) {
    ToolError error(codeOf(objections), objections[0].text + "; " + end);
    error.setStatus(objections[0].status);
    throw error;
  }
  std::vector<std::string> lines;
  for (const Objection& objection : objections) lines.push_back(objection.text);
  ToolError error(codeOf(objections), fmt::format("{} conflicts; {}", lines.size(), end));
  error.setDetails(std::move(lines));
  throw error;
}

std::vector<std::string> noticesOf(const StorePlan& plan, const StoredPlaces& stored,
                                   const std::vector<WantedBlock>& wanted) {
  std::vector<std::string> notices;
  std::set<std::string> added;
  std::map<std::size_t, std::vector<Rect>> patched;
  for (const StoreStep& step : plan.steps) {
    const AreaName& place = wanted[step.block].area;
    if (step.screenId == 0 && added.insert(place.screen).second) {
      notices.push_back(fmt::format("note: there was no screen {}; it was added with this rectangle ({})", place.screen,
                                    toText(place.rect)));
    }
    for (const std::size_t gone : step.removed) {
      notices.push_back(fmt::format("removed {}, {}", areaText(stored.areas[gone]), blockText(stored.areas[gone])));
    }
    if (step.movesScreen) notices.push_back(fmt::format("the screen {} is now {}", place.screen, toText(place.rect)));
    if (step.kind == StoreStep::Kind::kPatch) patched[step.area].push_back(place.rect);
    if (step.kind != StoreStep::Kind::kRewrite) continue;
    const StoredArea& area = stored.areas[step.area];
    notices.push_back(fmt::format("replaced {}, in {}{}", blockText(area), areaText(area), lostText(area)));
  }
  for (const auto& [area, rects] : patched) {
    const std::string what = rects.size() == 1 ? toText(rects[0]) : fmt::format("{} rectangles", rects.size());
    notices.push_back(fmt::format("patched {} in {}", what, areaText(stored.areas[area])));
  }
  return notices;
}

}  // namespace tovrtool
